#include "sim/led_class.h"

#include <gtest/gtest.h>

using sim::light_t;
using sim::written_e;

namespace {

constexpr const char* square = "15 500 15 0 0 500 0 0";

class LedClass : public testing::Test {
 protected:
  written_e write(const char* attribute, const char* text) { return led.write(attribute, text, now_ms); }

  void blink() {
    write("trigger", "pattern");
    write("repeat", "-1");
    write("pattern", square);
  }

  light_t light() const { return led.light(now_ms); }

  sim::led_class_t led;
  int64_t now_ms = 1'000'000;
};

}  // namespace

TEST_F(LedClass, IsDarkAtFirst) { EXPECT_EQ(light(), light_t{}); }

TEST_F(LedClass, ABrightnessIsALevel) {
  EXPECT_EQ(write("brightness", "5"), written_e::changed);
  EXPECT_EQ(light(), (light_t{5, 0}));
  EXPECT_EQ(write("brightness", "5\n"), written_e::same);
  EXPECT_EQ(write("brightness", "300"), written_e::changed);
  EXPECT_EQ(light(), (light_t{255, 0}));
  EXPECT_EQ(write("brightness", "bright"), written_e::refused);
  EXPECT_EQ(write("brightness", "-1"), written_e::refused);
  EXPECT_EQ(light(), (light_t{255, 0}));
}

TEST_F(LedClass, APatternNeedsItsTrigger) {
  EXPECT_EQ(write("pattern", square), written_e::refused);
  EXPECT_EQ(write("repeat", "-1"), written_e::refused);
  EXPECT_EQ(light(), light_t{});
  EXPECT_EQ(write("trigger", "pattern\n"), written_e::same);
  EXPECT_EQ(write("pattern", square), written_e::changed);
  EXPECT_EQ(light(), (light_t{15, 1000}));
}

TEST_F(LedClass, ATriggerThatDoesNotExistIsRefused) {
  blink();
  EXPECT_EQ(write("trigger", "disco"), written_e::refused);
  EXPECT_EQ(light(), (light_t{15, 1000}));
}

TEST_F(LedClass, AnAttributeThatDoesNotExistIsRefused) {
  blink();
  EXPECT_EQ(write("colour", "15 500 15 0"), written_e::refused);
}

TEST_F(LedClass, SettingATriggerAnewEndsThePatternInTheDark) {
  blink();
  EXPECT_EQ(write("trigger", "pattern"), written_e::changed);
  EXPECT_EQ(light(), light_t{});
  EXPECT_EQ(write("pattern", square), written_e::changed);
}

TEST_F(LedClass, WithoutATriggerALitOneStaysLitWhenItGetsOne) {
  write("brightness", "7");
  EXPECT_EQ(write("trigger", "pattern"), written_e::same);
  EXPECT_EQ(light(), (light_t{7, 0}));
}

TEST_F(LedClass, ANewlineLeavesTheLightAtTheLevelOfThatMoment) {
  blink();
  now_ms += 1200;
  EXPECT_EQ(write("pattern", "\n"), written_e::changed);
  EXPECT_EQ(light(), (light_t{15, 0}));
  write("pattern", square);
  now_ms += 1600;
  EXPECT_EQ(write("pattern", "\n"), written_e::changed);
  EXPECT_EQ(light(), light_t{});
}

TEST_F(LedClass, ARefusedPatternEndsTheOldOne) {
  blink();
  EXPECT_EQ(write("pattern", "15 500"), written_e::refused_but_changed);
  EXPECT_EQ(light(), (light_t{15, 0}));
  EXPECT_EQ(write("pattern", "15"), written_e::refused);
}

TEST_F(LedClass, BrightnessZeroEndsTheTrigger) {
  blink();
  EXPECT_EQ(write("brightness", "0"), written_e::changed);
  EXPECT_EQ(light(), light_t{});
  EXPECT_EQ(write("pattern", square), written_e::refused);
}

TEST_F(LedClass, APatternGoesOnOverABrightness) {
  blink();
  EXPECT_EQ(write("brightness", "200"), written_e::same);
  EXPECT_EQ(light(), (light_t{15, 1000}));
}

TEST_F(LedClass, ACountedPatternEndsByItself) {
  write("trigger", "pattern");
  write("repeat", "2");
  write("pattern", "0 300 0 0 9 300 9 0");
  EXPECT_EQ(light(), (light_t{9, 600}));
  EXPECT_EQ(led.changes_at_ms(now_ms), std::optional<int64_t>(now_ms + 1200));
  now_ms += 1200;
  EXPECT_EQ(light(), (light_t{9, 0}));
  EXPECT_EQ(led.changes_at_ms(now_ms), std::nullopt);
  EXPECT_EQ(write("brightness", "3"), written_e::changed);
  EXPECT_EQ(light(), (light_t{3, 0}));
}

TEST_F(LedClass, AfterACountedPatternANewOneWaitsForItsRepeat) {
  write("trigger", "pattern");
  write("repeat", "1");
  write("pattern", square);
  now_ms += 1000;
  EXPECT_EQ(light(), light_t{});
  EXPECT_EQ(write("pattern", "9 100 9 0 0 100 0 0"), written_e::same);
  EXPECT_EQ(light(), light_t{});
  EXPECT_EQ(led.changes_at_ms(now_ms), std::nullopt);
  EXPECT_EQ(write("brightness", "3"), written_e::changed);
  EXPECT_EQ(write("pattern", square), written_e::same);
  EXPECT_EQ(light(), (light_t{3, 0}));
  EXPECT_EQ(write("repeat", "2"), written_e::changed);
  EXPECT_EQ(light(), (light_t{15, 1000}));
  EXPECT_EQ(led.changes_at_ms(now_ms), std::optional<int64_t>(now_ms + 2000));
}

TEST_F(LedClass, ABrightnessAfterACountedPatternDoesNotBringItsRepeatBack) {
  write("trigger", "pattern");
  write("repeat", "1");
  write("pattern", square);
  now_ms += 1000;
  write("brightness", "3");
  EXPECT_EQ(write("pattern", square), written_e::same);
  EXPECT_EQ(light(), (light_t{3, 0}));
}

TEST_F(LedClass, ANewPatternPlaysAsOftenAsTheOldOneStillHadTo) {
  write("trigger", "pattern");
  write("repeat", "3");
  write("pattern", square);
  now_ms += 1200;
  write("pattern", "9 100 9 0 0 100 0 0");
  EXPECT_EQ(led.changes_at_ms(now_ms), std::optional<int64_t>(now_ms + 400));
}

TEST_F(LedClass, AnotherRepeatStartsThePatternAnew) {
  write("trigger", "pattern");
  write("pattern", square);
  now_ms += 700;
  EXPECT_EQ(write("repeat", "1"), written_e::same);
  EXPECT_EQ(led.changes_at_ms(now_ms), std::optional<int64_t>(now_ms + 1000));
  EXPECT_EQ(write("repeat", "0"), written_e::refused);
}

TEST(Brightness, IsADecimalNumber) {
  EXPECT_EQ(sim::parse_brightness("0"), std::optional(0U));
  EXPECT_EQ(sim::parse_brightness("128\n"), std::optional(128U));
  EXPECT_EQ(sim::parse_brightness("055"), std::optional(55U));
  for (const char* refused : {"", "\n", "1 2", "0x10", "1.5"}) {
    EXPECT_EQ(sim::parse_brightness(refused), std::nullopt) << refused;
  }
}
