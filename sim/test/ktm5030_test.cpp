#include "sim/ktm5030.h"

#include <event2/event.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <fstream>
#include <sstream>

#include "lnx/src/ktm5030.h"
#include "sim/descriptor.h"
#include "zyl/event_loop.h"

namespace {

/// A program on the appliance, in the same process.
class SimulatedKtm5030 : public testing::Test {
 protected:
  /// Runs the loop until the property has the value; false after a generous time.
  bool becomes(const std::string& path, const std::string& value) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (tree.value(path) != value) {
      if (std::chrono::steady_clock::now() > limit) {
        return false;
      }
      const timeval pause{0, 1000};
      event_base_loopexit(loop.base(), &pause);
      event_base_dispatch(loop.base());
    }
    return true;
  }

  static std::string told() {
    std::ostringstream text;
    text << std::ifstream("/tmp/story").rdbuf();
    return text.str();
  }

  zyl::event_loop_t loop;
  sim::property_tree_t tree;
  sim::story_t story{"/tmp/story"};
  sim::testbed_t bed;
  sim::ktm5030_t device{loop.base(), bed, tree, story, true};
  lnx::ktm5030_status_t status;
};

}  // namespace

TEST_F(SimulatedKtm5030, GivesTheModeOfTheProperty) {
  uint32_t mode = 77;
  EXPECT_EQ(tree.value("/sim/ktm5030/mode"), "0");
  EXPECT_EQ(lnx::ktm5030_get_mode(mode), 1);
  EXPECT_EQ(mode, 0U);
  tree.set("/sim/ktm5030/mode", "200");
  EXPECT_EQ(lnx::ktm5030_get_mode(mode), 200);
  EXPECT_EQ(mode, 2U);
}

TEST_F(SimulatedKtm5030, TellsTheModeThatAProgramSets) {
  EXPECT_TRUE(lnx::ktm5030_set_mode(2));
  EXPECT_TRUE(becomes("/sim/ktm5030/mode", "1"));
  EXPECT_TRUE(told().ends_with("\thardware\tktm5030 mode 1\n")) << told();
  EXPECT_TRUE(lnx::ktm5030_set_mode(0));
  EXPECT_TRUE(becomes("/sim/ktm5030/mode", "0"));
}

TEST_F(SimulatedKtm5030, KeepsItsModeWhereAPropertyIsNoByte) {
  tree.set("/sim/ktm5030/mode", "5");
  for (const char* text : {"", "256", "-1", "5 6", "five"}) {
    tree.set("/sim/ktm5030/mode", text);
    EXPECT_EQ(tree.value("/sim/ktm5030/mode"), "5") << text;
  }
}

TEST_F(SimulatedKtm5030, GivesTheInfoOfTheProperty) {
  tree.set("/sim/ktm5030/info", "1 2 4294967295");
  for (const char* text : {"", "1 2", "1 2 3 4", "1 2 x", "1 2 4294967296"}) {
    tree.set("/sim/ktm5030/info", text);
    EXPECT_EQ(tree.value("/sim/ktm5030/info"), "1 2 4294967295") << text;
  }
  EXPECT_TRUE(lnx::ktm5030_read_info(status));
  EXPECT_EQ(status.info.first, 1U);
  EXPECT_EQ(status.info.second, 2U);
  EXPECT_EQ(status.info.third, 4294967295U);
}

TEST_F(SimulatedKtm5030, KeepsItsEventsUntilSomebodyLooks) {
  tree.set("/sim/ktm5030/info", "7 8 9");
  for (const char* code : {"0", "2", "3", "5", "6", "9"}) {
    tree.set("/sim/ktm5030/event", code);
  }
  EXPECT_TRUE(told().ends_with("\thardware\tktm5030 event 9\n")) << told();
  EXPECT_TRUE(lnx::ktm5030_set_mode(0));
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 15U);
  EXPECT_EQ(status.signal, 1U);
  EXPECT_EQ(status.info.second, 8U);
  EXPECT_EQ(status.flag_a, 1);
  EXPECT_EQ(status.flag_b, 0);
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 0U);
}

TEST_F(SimulatedKtm5030, TellsFromTheStartThatItTakesEvents) {
  ASSERT_NE(tree.find("/sim/ktm5030/event"), nullptr);
  EXPECT_EQ(tree.value("/sim/ktm5030/event"), "");
}

TEST_F(SimulatedKtm5030, GivesNoEventWhereAPropertyIsNoCode) {
  const std::string before = told();
  for (const char* text : {"", "none", "-1", "4294967296", "0 1", "0x1", " 1"}) {
    tree.set("/sim/ktm5030/event", text);
  }
  const sim::descriptor_t open(::open("/dev/ktm5030", O_RDWR | O_NONBLOCK | O_CLOEXEC));
  pollfd waiting{open.get(), POLLIN, 0};
  EXPECT_EQ(::poll(&waiting, 1, 0), 0);
  EXPECT_EQ(told(), before);
}

TEST_F(SimulatedKtm5030, LosesTheEventsThatWaitWhenItIsTakenAway) {
  tree.set("/sim/ktm5030/event", "0");
  tree.set("/sim/ktm5030/device", "absent");
  tree.set("/sim/ktm5030/event", "3");
  tree.set("/sim/ktm5030/device", "present");
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 0U);
  tree.set("/sim/ktm5030/event", "5");
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 8U);
}

TEST_F(SimulatedKtm5030, CanBeTakenAwayAndReturns) {
  uint32_t mode = 0;
  tree.set("/sim/ktm5030/device", "absent");
  EXPECT_EQ(tree.value("/sim/ktm5030/device"), "absent");
  EXPECT_TRUE(told().ends_with("\thardware\tktm5030 removed\n")) << told();
  EXPECT_EQ(lnx::ktm5030_get_mode(mode), 0);
  EXPECT_FALSE(lnx::ktm5030_set_mode(1));
  tree.set("/sim/ktm5030/event", "0");
  tree.set("/sim/ktm5030/device", "present");
  EXPECT_EQ(tree.value("/sim/ktm5030/device"), "present");
  EXPECT_TRUE(told().ends_with("\thardware\tktm5030 added\n")) << told();
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 0U);
  EXPECT_EQ(lnx::ktm5030_get_mode(mode), 1);
  tree.set("/sim/ktm5030/device", "elsewhere");
  EXPECT_EQ(tree.value("/sim/ktm5030/device"), "present");
}

TEST_F(SimulatedKtm5030, FailsTheRequestsAndReadsOfWhoHasItOpenWhileItIsAway) {
  const sim::descriptor_t open(::open("/dev/ktm5030", O_RDWR | O_CLOEXEC));
  ASSERT_TRUE(open);
  uint8_t byte = 0;
  EXPECT_EQ(::ioctl(open.get(), lnx::ktm5030_read_mode_request, &byte), 0);
  tree.set("/sim/ktm5030/event", "0");
  tree.set("/sim/ktm5030/device", "absent");
  EXPECT_EQ(::ioctl(open.get(), lnx::ktm5030_read_mode_request, &byte), -1);
  EXPECT_EQ(errno, ENODEV);
  pollfd waiting{open.get(), POLLIN, 0};
  EXPECT_EQ(::poll(&waiting, 1, 0), 1);
  uint32_t code = 77;
  EXPECT_EQ(::read(open.get(), &code, sizeof code), -1);
  EXPECT_EQ(errno, ENODEV);
  EXPECT_EQ(code, 77U);
  EXPECT_EQ(lnx::ktm5030_take_events(open.get(), status), 0U);
  tree.set("/sim/ktm5030/device", "present");
  EXPECT_EQ(::ioctl(open.get(), lnx::ktm5030_read_mode_request, &byte), 0);
  EXPECT_EQ(::poll(&waiting, 1, 0), 0);
}

TEST_F(SimulatedKtm5030, FailsARequestThatItDoesNotKnow) {
  const sim::descriptor_t open(::open("/dev/ktm5030", O_RDWR | O_CLOEXEC));
  uint8_t byte = 0;
  EXPECT_EQ(::ioctl(open.get(), _IOW('K', 9, uint8_t), &byte), -1);
  EXPECT_EQ(errno, ENOTTY);
}

TEST(AbsentKtm5030, ComesWhenThePropertySaysSo) {
  zyl::event_loop_t loop;
  sim::property_tree_t tree;
  sim::story_t story;
  sim::testbed_t bed;
  const sim::ktm5030_t device(loop.base(), bed, tree, story, false);
  uint32_t mode = 0;
  EXPECT_EQ(tree.value("/sim/ktm5030/device"), "absent");
  EXPECT_EQ(lnx::ktm5030_get_mode(mode), 0);
  tree.set("/sim/ktm5030/device", "present");
  EXPECT_EQ(lnx::ktm5030_get_mode(mode), 1);
}
