#include "app/led_rules.h"

#include <gtest/gtest.h>

#include <QByteArray>
#include <limits>

namespace {

using namespace vgn_control;

TEST(LedRules, ALevelIsRoundedToOneOf256Steps) {
  EXPECT_EQ(levelText(0.0), "0");
  EXPECT_EQ(levelText(0.5), "128");
  EXPECT_EQ(levelText(1.0), "255");
  EXPECT_EQ(levelText(0.4 / 255), "0");
  EXPECT_EQ(levelText(0.5 / 255), "1");
  EXPECT_EQ(levelText(254.4 / 255), "254");
}

TEST(LedRules, LevelsBeyondTheRangeCountAsItsEnds) {
  EXPECT_EQ(levelText(-0.1), "0");
  EXPECT_EQ(levelText(1.1), "255");
  EXPECT_EQ(levelText(1e300), "255");
  EXPECT_EQ(levelText(-std::numeric_limits<double>::infinity()), "0");
  EXPECT_EQ(levelText(std::numeric_limits<double>::infinity()), "255");
  EXPECT_EQ(levelText(std::numeric_limits<double>::quiet_NaN()), "0");
}

TEST(LedRules, APatternHoldsBrightnessThenDarknessForTheInterval) {
  EXPECT_EQ(patternText("%2 %1 %2 0 0 %1 0 0", 500, 15), "15 500 15 0 0 500 0 0");
  EXPECT_EQ(patternText("%2 %1 %2 0 0 %1 0 0", 100, 255), "255 100 255 0 0 100 0 0");
}

TEST(LedRules, TheSettingsWordsAreOffAndDim) {
  EXPECT_EQ(brightnessOf("Off", 15, 5), 0);
  EXPECT_EQ(brightnessOf("Dim", 15, 5), 5);
  EXPECT_EQ(brightnessOf("Bright", 15, 5), 15);
}

TEST(LedRules, OnlyTheFirstThreeBytesOfTheSettingCount) {
  EXPECT_EQ(brightnessOf("Offline", 15, 5), 0);
  EXPECT_EQ(brightnessOf("Dim\n", 15, 5), 5);
  EXPECT_EQ(brightnessOf(" Off", 15, 5), 15);
  EXPECT_EQ(brightnessOf("off", 15, 5), 15);
  EXPECT_EQ(brightnessOf(QByteArray("Of\0f", 4), 15, 5), 15);
}

TEST(LedRules, ASettingOfLessThanThreeBytesIsBright) {
  EXPECT_EQ(brightnessOf("", 15, 5), 15);
  EXPECT_EQ(brightnessOf("Di", 15, 5), 15);
  EXPECT_EQ(brightnessOf("Of", 15, 5), 15);
}

TEST(LedRules, TheStatusIsGreenOnlyWithAGoodDesignAndAValidFormat) {
  EXPECT_EQ(statusColour(true, true), StatusColour::green);
  EXPECT_EQ(statusColour(true, false), StatusColour::blue);
  EXPECT_EQ(statusColour(false, true), StatusColour::blue);
  EXPECT_EQ(statusColour(false, false), StatusColour::blue);
}

}  // namespace
