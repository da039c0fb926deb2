#include "sim/key_events.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using sim::key_action_e;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

TEST(KeyAction, HasThreeWords) {
  EXPECT_THAT(sim::parse_key_action("press"), Optional(key_action_e::press));
  EXPECT_THAT(sim::parse_key_action("repeat"), Optional(key_action_e::repeat));
  EXPECT_THAT(sim::parse_key_action("release"), Optional(key_action_e::release));
  EXPECT_EQ(sim::parse_key_action("Press"), std::nullopt);
  EXPECT_EQ(sim::parse_key_action(""), std::nullopt);
}

TEST(KeyReport, IsTheKeyAndTheEventThatClosesTheReport) {
  const auto report = sim::key_report(KEY_F2, key_action_e::repeat, {12, 34});
  EXPECT_EQ(sizeof report, 48U);
  EXPECT_EQ(report[0].time.tv_sec, 12);
  EXPECT_EQ(report[0].time.tv_usec, 34);
  EXPECT_EQ(report[0].type, 1);
  EXPECT_EQ(report[0].code, 60);
  EXPECT_EQ(report[0].value, 2);
  EXPECT_EQ(report[1].type, 0);
  EXPECT_EQ(report[1].code, 0);
  EXPECT_EQ(report[1].value, 0);
}

TEST(KeyReport, APressIsOneAndAReleaseZero) {
  EXPECT_EQ(sim::key_report(KEY_F1, key_action_e::press, {})[0].value, 1);
  EXPECT_EQ(sim::key_report(KEY_F1, key_action_e::release, {})[0].value, 0);
  EXPECT_EQ(sim::key_report(KEY_F1, key_action_e::release, {})[0].code, 59);
}

TEST(HexBytes, AreTwoDigitsEach) {
  EXPECT_THAT(sim::parse_hex("00ff7E"), Optional(ElementsAre(0x00, 0xFF, 0x7E)));
  EXPECT_THAT(sim::parse_hex(" 01 02  0304 "), Optional(ElementsAre(1, 2, 3, 4)));
  EXPECT_THAT(sim::parse_hex(""), Optional(IsEmpty()));
}

TEST(HexBytes, AnyOtherTextIsNone) {
  for (const char* text : {"0", "0 0", "0g", "0x00", "-1", "000"}) {
    EXPECT_EQ(sim::parse_hex(text), std::nullopt) << text;
  }
}
