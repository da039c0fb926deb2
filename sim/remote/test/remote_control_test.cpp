#include "sim/remote/remote_control.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "sim/remote/appliance_process.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

namespace {

constexpr std::chrono::milliseconds short_limit{20};
/// In which an answer surely comes.
constexpr std::chrono::milliseconds answered_limit{1000};

class RemoteControl : public testing::Test {
 protected:
  sim::appliance_process_t appliance;
  sim::remote_control_t remote;
};

}  // namespace

TEST_F(RemoteControl, ReadsWhatItHasSet) {
  remote.set("/a", "1");
  EXPECT_EQ(remote.value("/a"), "1");
  remote.set("/a", "2");
  EXPECT_EQ(remote.value("/a"), "2");
  EXPECT_EQ(remote.value("/none"), "");
}

TEST_F(RemoteControl, ReadsAWholeFolder) {
  remote.set("/a/x", "1");
  remote.set("/a/y", "2");
  remote.set("/b", "3");
  EXPECT_THAT(remote.below("/a"), ElementsAre(Pair("/a/x", "1"), Pair("/a/y", "2")));
}

TEST_F(RemoteControl, WaitsForAValueThatComesLater) {
  sim::child_process_t logger({"logger", "-t", "late", "it came"});
  const auto outcome = remote.expect_property("/sim/log/last", "late: it came");
  EXPECT_TRUE(outcome) << outcome.seen;
}

TEST_F(RemoteControl, AnOldValueDoesNotPassForANewOne) {
  remote.set("/a", "old");
  EXPECT_TRUE(remote.expect_property("/a", "old"));
  remote.set("/a", "new");
  EXPECT_FALSE(remote.expect_property("/a", "old", short_limit));
}

TEST_F(RemoteControl, AFailedWaitSaysWhatItSaw) {
  remote.set("/a", "1");
  const auto outcome = remote.expect_property("/a", "2", answered_limit);
  EXPECT_FALSE(outcome);
  EXPECT_EQ(outcome.seen, "/a is \"1\" after 1000 ms, not \"2\"");
}

TEST_F(RemoteControl, AWaitForAnApplianceThatHasEndedSaysSo) {
  appliance.process().stop(SIGTERM, sim::generous_limit);
  const auto outcome = remote.expect_property("/a", "2");
  EXPECT_FALSE(outcome);
  EXPECT_THAT(outcome.seen, HasSubstr("the property service is gone"));
}

TEST_F(RemoteControl, PlugGivesTheBytesToTheAppliance) {
  const std::string bytes("\x01\x00\xff", 3);
  remote.plug(1, std::span(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()));
  std::ifstream file(remote.value("/sim/hdmi/1/edid"), std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), bytes);
  remote.unplug(1);
  EXPECT_EQ(remote.value("/sim/hdmi/1/edid"), "");
}

TEST_F(RemoteControl, JunkFromTheServiceDoesNotDisturbIt) {
  remote.set("/sim/property/fault", "junk");
  remote.set("/a", "1");
  EXPECT_TRUE(remote.expect_property("/a", "1"));
}

TEST_F(RemoteControl, FindsALineOfTheLogAlsoOneThatWasThereBefore) {
  sim::child_process_t logger({"logger", "-t", "x", "first"});
  EXPECT_TRUE(remote.expect_log("x: first"));
  EXPECT_TRUE(remote.expect_log("x: first"));
  EXPECT_FALSE(remote.expect_log("x: first", remote.log().size(), short_limit));
}

TEST(RemoteControlStart, WithoutAnApplianceItFails) {
  EXPECT_THROW(sim::remote_control_t{short_limit}, std::runtime_error);
}

TEST(TimingSize, IsTheActivePictureOfTheTenNumbers) {
  EXPECT_EQ(sim::timing_size("594000 3840 4016 4104 4400 2160 2168 2178 2250 5"), "3840x2160");
  EXPECT_EQ(sim::timing_size(""), "");
  EXPECT_EQ(sim::timing_size("594000 3840"), "");
}
