#include "sim/lamp.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using sim::looks_text;
using sim::written_e;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

namespace {

const std::string blue = "/sys/class/leds/xk1-rgb-led:blue:status/";
const std::string green = "/sys/class/leds/xk1-rgb-led:green:id/";
const std::string pwm = "/proc/tarn/pwm-0/";

class Lamp : public testing::Test {
 protected:
  void use(int model) { lamp = sim::make_lamp(model); }
  written_e write(const std::string& file, const char* text) { return lamp->write(file, text, now_ms); }
  std::string looks() const { return looks_text(lamp->look(now_ms)); }

  std::unique_ptr<sim::lamp_t> lamp;
  int64_t now_ms = 1000;
};

}  // namespace

TEST_F(Lamp, EachModelHasItsFiles) {
  use(106);
  EXPECT_THAT(lamp->files(),
              UnorderedElementsAre(blue + "trigger", blue + "pattern", blue + "repeat", blue + "brightness",
                                   green + "trigger", green + "pattern", green + "repeat", green + "brightness"));
  use(105);
  EXPECT_THAT(lamp->files(), UnorderedElementsAre(pwm + "out_en", pwm + "period", pwm + "value"));
  for (const int other : {85, 100, 137}) {
    use(other);
    EXPECT_THAT(lamp->files(), ElementsAre("/sys/class/leds/id_led/brightness"));
  }
}

TEST_F(Lamp, TheRgbOneShowsTheLedThatIsLit) {
  use(106);
  EXPECT_EQ(looks(), "off");
  EXPECT_EQ(write(blue + "brightness", "15"), written_e::changed);
  EXPECT_EQ(looks(), "blue at 15, steady");
  EXPECT_EQ(write(blue + "brightness", "0"), written_e::changed);
  EXPECT_EQ(write(green + "brightness", "5"), written_e::changed);
  EXPECT_EQ(looks(), "green at 5, steady");
}

TEST_F(Lamp, TheRgbOneBlinksByThePatternTrigger) {
  use(106);
  write(green + "trigger", "pattern");
  write(green + "repeat", "-1");
  EXPECT_EQ(write(green + "pattern", "15 100 15 0 0 100 0 0"), written_e::changed);
  EXPECT_EQ(looks(), "green at 15, blinks every 200 ms");
  EXPECT_EQ(lamp->changes_at_ms(now_ms), std::nullopt);
  EXPECT_EQ(write(blue + "pattern", "15 100 15 0 0 100 0 0"), written_e::refused);
}

TEST_F(Lamp, TheRgbOneTellsWhichLedChangesFirst) {
  use(106);
  for (const auto& [led, repeat] : {std::pair(blue, "3"), std::pair(green, "2")}) {
    write(led + "trigger", "pattern");
    write(led + "repeat", repeat);
    write(led + "pattern", "15 100 15 0 0 100 0 0");
  }
  EXPECT_EQ(lamp->changes_at_ms(now_ms), std::optional<int64_t>(now_ms + 400));
}

TEST_F(Lamp, ThePwmOneIsDarkUntilPeriodAndValueAreSet) {
  use(105);
  EXPECT_EQ(write(pwm + "out_en", "255"), written_e::same);
  EXPECT_EQ(looks(), "off");
  EXPECT_EQ(write(pwm + "period", "0 500"), written_e::same);
  EXPECT_EQ(write(pwm + "value", "0 500\n"), written_e::changed);
  EXPECT_EQ(looks(), "white at 255, steady");
  EXPECT_EQ(write(pwm + "out_en", "0"), written_e::changed);
  EXPECT_EQ(looks(), "off");
}

TEST_F(Lamp, ThePwmOneRefusesWhatIsNoNumber) {
  use(105);
  for (const char* text : {"500", "0 x", "", "0 "}) {
    EXPECT_EQ(write(pwm + "period", text), written_e::refused) << text;
  }
  EXPECT_EQ(write(pwm + "out_en", "on"), written_e::refused);
}

TEST_F(Lamp, ThePwmOneBlinksByBeingWritten) {
  use(105);
  write(pwm + "period", "0 500");
  write(pwm + "value", "0 500");
  for (const char* level : {"255", "0", "255"}) {
    EXPECT_EQ(write(pwm + "out_en", level), written_e::changed);
    now_ms += 500;
  }
  EXPECT_EQ(looks(), "white at 255, blinks every 1000 ms");
  EXPECT_TRUE(lamp->changes_at_ms(now_ms));
}

TEST_F(Lamp, ThePlainOneHasItsLevelAndBlinksByBeingWritten) {
  use(137);
  const std::string file = "/sys/class/leds/id_led/brightness";
  EXPECT_EQ(write(file, "128"), written_e::changed);
  EXPECT_EQ(looks(), "white at 128, steady");
  EXPECT_EQ(write(file, "dim"), written_e::refused);
  now_ms += 100;
  EXPECT_EQ(write(file, "0"), written_e::changed);
  now_ms += 100;
  EXPECT_EQ(write(file, "255"), written_e::changed);
  EXPECT_EQ(looks(), "white at 255, blinks every 200 ms");
  EXPECT_EQ(write(file, "255"), written_e::same);
  EXPECT_TRUE(lamp->changes_at_ms(now_ms));
}
