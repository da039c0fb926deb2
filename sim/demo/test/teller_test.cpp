#include "sim/demo/teller.h"

#include <gtest/gtest.h>

#include <string>

namespace {

/// What is told of the line; empty if nothing is.
std::string told(sim::teller_t& teller, const std::string& actor, const std::string& text) {
  const auto line = teller.tell({1, actor, text});
  return line ? line->actor + "|" + line->text : "";
}

std::string told(const std::string& actor, const std::string& text) {
  sim::teller_t teller;
  return told(teller, actor, text);
}

}  // namespace

TEST(Teller, TheIdentityIsToldAsAWholeWhenItsLastPartIsRead) {
  sim::teller_t teller;
  EXPECT_EQ(told(teller, "property", "vgn_control reads /sys/config/arch: \"aarch64\""), "");
  EXPECT_EQ(told(teller, "property", "vgn_control reads /sys/config/platform: \"vgnstreamer\""), "");
  EXPECT_EQ(told(teller, "property", "vgn_control reads /sys/config/part_number: \"part-106\""), "");
  EXPECT_EQ(told(teller, "property", "vgn_control reads /sys/config/fw_server_hash: \"abc\""), "");
  EXPECT_EQ(told(teller, "property", "vgn_control reads /sys/config/fw_server_hash_compat: \"abc\""),
            "property|vgn_control reads its identity: aarch64, vgnstreamer, part-106, firmware abc");
}

TEST(Teller, SubscriptionsAndSetsAreToldReadsAreNot) {
  EXPECT_EQ(told("property", "vgn_control watches /tarn/mode/id"), "property|vgn_control watches /tarn/mode/id");
  EXPECT_EQ(told("property", "vgn_control reads /tarn/mode/id: \"\""), "");
  EXPECT_EQ(told("property", "vgn_control reads /tarn/mode/id, which does not exist"), "");
  EXPECT_EQ(told("property", "vgn_control sets /sys/hdmi1_properties to \"1920x1080\""),
            "property|vgn_control sets /sys/hdmi1_properties to \"1920x1080\"");
}

TEST(Teller, WhatTheDemoDoesInOrderToSeeIsNotTold) {
  EXPECT_EQ(told("property", "vgn-demo watches /sys/hdmi1_properties"), "");
  EXPECT_EQ(told("property", "vgn-demo reads /sys/hdmi1_properties: \"\""), "");
}

TEST(Teller, WhatTheDemoSetsIsTheRestOfTheSystems) {
  EXPECT_EQ(told("property", "vgn-demo sets /tarn/design/status to \"OK\""),
            "property|the rest of the system sets /tarn/design/status to \"OK\"");
}

TEST(Teller, WhatHappensAtTheFrontPanelIsTold) {
  EXPECT_EQ(told("panel", "id key pressed"), "panel|id key pressed");
  EXPECT_EQ(told("reset", "script started with --level=1"), "reset|script started with --level=1");
}

TEST(Teller, ASplashPropertyIsToldWhenItSaysSomething) {
  EXPECT_EQ(told("property", "vgn_control sets /xk_splash/0/info to \"\""), "");
  EXPECT_NE(told("property", "vgn_control sets /xk_splash/0/mode to \"boot_splash_screen\""), "");
  EXPECT_NE(told("property", "vgn_control watches /xk_splash/0/ready"), "");
}

TEST(Teller, OfTheLogOnlyTheDecisionsAboutDisplaysAreTold) {
  EXPECT_EQ(told("log", "vgn_control: vgn_streamer_proxy::set_preferred_mode hdmi_index=0 mode=1920x1080@60"),
            "daemon|vgn_streamer_proxy::set_preferred_mode hdmi_index=0 mode=1920x1080@60");
  EXPECT_NE(told("log", "vgn_control: vgn_streamer_proxy::on_output_connection empty edid"), "");
  EXPECT_NE(told("log", "vgn_control: vgn_streamer_proxy::on_output_connection empty modes list"), "");
  EXPECT_EQ(told("log", "vgn_control: vgn_zsd_interface_t::start"), "");
}

TEST(Teller, WhatTheOtherActorsDoIsToldButNotTheirHousekeeping) {
  EXPECT_EQ(told("driver", "output 0: timing 3840x2160, 594000 kHz"), "driver|output 0: timing 3840x2160, 594000 kHz");
  EXPECT_EQ(told("driver", "output 0: source hdmi_in_0 removed"), "");
}

TEST(Teller, EverythingIsToldAsItIsWhenAskedFor) {
  sim::teller_t teller(true);
  EXPECT_EQ(told(teller, "property", "vgn_control reads /tarn/mode/id: \"\""),
            "property|vgn_control reads /tarn/mode/id: \"\"");
  EXPECT_EQ(told(teller, "log", "anybody: anything"), "log|anybody: anything");
}

TEST(PropertyEvent, HasItsParts) {
  const auto set = sim::property_event_of({1, "property", "my program sets /a/b to \"x to y\""});
  ASSERT_TRUE(set);
  EXPECT_EQ(set->who, "my program");
  EXPECT_EQ(set->verb, "sets");
  EXPECT_EQ(set->path, "/a/b");
  EXPECT_EQ(set->value, "x to y");
  const auto watch = sim::property_event_of({1, "property", "client watches /a"});
  ASSERT_TRUE(watch);
  EXPECT_EQ(watch->path, "/a");
  EXPECT_EQ(watch->value, "");
}

TEST(PropertyEvent, AnotherLineHasNone) {
  EXPECT_FALSE(sim::property_event_of({1, "driver", "client watches /a"}));
  EXPECT_FALSE(sim::property_event_of({1, "property", "sends junk to its clients"}));
}
