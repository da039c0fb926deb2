#include "sim/led_pattern.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using sim::light_t;
using sim::pattern_step_t;
using sim::pattern_t;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

namespace {

/// On and off for half a second each, with steps between them: a tuple of no duration behind each level.
const pattern_t square{{{15, 500}, {15, 0}, {0, 500}, {0, 0}}, -1};

}  // namespace

TEST(LedPatternText, IsPairsOfBrightnessAndDuration) {
  EXPECT_THAT(sim::parse_pattern("15 500 15 0 0 500 0 0"), Optional(square.steps));
  EXPECT_THAT(sim::parse_pattern("  0   10\n255 20 \n"),
              Optional(ElementsAre(pattern_step_t{0, 10}, pattern_step_t{255, 20})));
}

TEST(LedPatternText, ANewlineOrNothingClears) {
  EXPECT_THAT(sim::parse_pattern("\n"), Optional(IsEmpty()));
  EXPECT_THAT(sim::parse_pattern(""), Optional(IsEmpty()));
}

TEST(LedPatternText, ASingleTupleIsRefused) { EXPECT_EQ(sim::parse_pattern("15 500"), std::nullopt); }

TEST(LedPatternText, ABrightnessAbove255IsRefused) {
  EXPECT_EQ(sim::parse_pattern("256 500 0 500"), std::nullopt);
  EXPECT_NE(sim::parse_pattern("255 500 0 500"), std::nullopt);
}

TEST(LedPatternText, WhatIsNotTwoNumbersIsRefused) {
  EXPECT_EQ(sim::parse_pattern("15 500 15"), std::nullopt);
  EXPECT_EQ(sim::parse_pattern("15 x 0 500"), std::nullopt);
  EXPECT_EQ(sim::parse_pattern("pattern"), std::nullopt);
}

TEST(LedPatternText, ASingleCharacterAtTheEndIsNotLookedAt) {
  EXPECT_THAT(sim::parse_pattern("15 500 0 500 x"),
              Optional(ElementsAre(pattern_step_t{15, 500}, pattern_step_t{0, 500})));
}

TEST(LedRepeat, IsACountOrForEver) {
  EXPECT_THAT(sim::parse_repeat("-1"), Optional(-1));
  EXPECT_THAT(sim::parse_repeat("3\n"), Optional(3));
  for (const char* refused : {"0", "-2", "", "x", "3 ", "99999999999"}) {
    EXPECT_EQ(sim::parse_repeat(refused), std::nullopt) << refused;
  }
}

TEST(LedPattern, ATupleOfNoDurationMakesTheChangeASharpOne) {
  sim::pattern_player_t player(square);
  for (int round = 0; round < 3; ++round) {
    const auto on = player.next();
    ASSERT_TRUE(on);
    EXPECT_EQ(on->brightness, 15U);
    EXPECT_EQ(on->duration_ms, 500);
    const auto off = player.next();
    ASSERT_TRUE(off);
    EXPECT_EQ(off->brightness, 0U);
    EXPECT_EQ(off->duration_ms, 500);
  }
}

TEST(LedPattern, HasTheBrightnessOfItsTime) {
  EXPECT_EQ(sim::brightness_at(square, 0), 15U);
  EXPECT_EQ(sim::brightness_at(square, 499), 15U);
  EXPECT_EQ(sim::brightness_at(square, 500), 0U);
  EXPECT_EQ(sim::brightness_at(square, 999), 0U);
  EXPECT_EQ(sim::brightness_at(square, 1000), 15U);
  EXPECT_EQ(sim::brightness_at(square, 3'600'600), 0U);
}

TEST(LedPattern, BlinksWithThePeriodOfOnAndOff) { EXPECT_EQ(sim::light_of(square), (light_t{15, 1000})); }

TEST(LedPattern, UnequalPhasesCountTogether) {
  EXPECT_EQ(sim::light_of({{{200, 100}, {200, 0}, {0, 900}, {0, 0}}, -1}), (light_t{200, 1000}));
}

TEST(LedPattern, OneOfASingleLevelIsSteady) {
  EXPECT_EQ(sim::light_of({{{7, 100}, {7, 0}}, -1}), (light_t{7, 0}));
  EXPECT_EQ(sim::light_of({{{7, 0}, {7, 100}}, -1}), (light_t{7, 0}));
  EXPECT_EQ(sim::light_of({{{0, 100}, {0, 100}}, -1}), (light_t{0, 0}));
}

TEST(LedPattern, OneOfNoDurationAtAllStillTakesTime) {
  EXPECT_EQ(sim::light_of({{{7, 0}, {7, 0}}, -1}), (light_t{7, 0}));
  EXPECT_EQ(sim::brightness_at({{{7, 0}, {7, 0}}, -1}, 50), 7U);
}

TEST(LedPattern, WithoutTuplesOfNoDurationTheLightGoesGradually) {
  const pattern_t ramp{{{0, 200}, {100, 200}}, -1};
  EXPECT_EQ(sim::brightness_at(ramp, 0), 0U);
  EXPECT_EQ(sim::brightness_at(ramp, 50), 25U);
  EXPECT_EQ(sim::brightness_at(ramp, 120), 50U);
  EXPECT_EQ(sim::brightness_at(ramp, 200), 100U);
  EXPECT_EQ(sim::brightness_at(ramp, 350), 50U);
  EXPECT_EQ(sim::light_of(ramp).brightness, 100U);
  EXPECT_GT(sim::light_of(ramp).period_ms, 400U);
}

TEST(LedPattern, AStepShorterThanTheDimmingIntervalIsSharp) {
  const pattern_t quick{{{100, 20}, {0, 20}}, -1};
  EXPECT_EQ(sim::brightness_at(quick, 0), 100U);
  EXPECT_EQ(sim::brightness_at(quick, 49), 100U);
  EXPECT_EQ(sim::brightness_at(quick, 50), 0U);
}

TEST(LedPattern, OneThatIsCountedEndsAtItsLastLevel) {
  const pattern_t twice{square.steps, 2};
  EXPECT_EQ(sim::end_of(twice), std::optional<int64_t>(2000));
  EXPECT_EQ(sim::brightness_at(twice, 1000), 15U);
  EXPECT_EQ(sim::brightness_at(twice, 1'000'000), 0U);
}

TEST(LedPattern, OneForEverHasNoEnd) {
  EXPECT_EQ(sim::end_of(square), std::nullopt);
  EXPECT_EQ(sim::end_of({square.steps, 2'000'000'000}), std::nullopt);
}
