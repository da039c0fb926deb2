#include "sim/key_device.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/input.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "sim/descriptor.h"
#include "sim/test/text_of_file.h"
#include "test_support/loop_until.h"
#include "zyl/event_loop.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

/// A program that has the keys open, in the same process: this one sees the testbed as a client does.
class KeyDevice : public testing::Test {
 protected:
  sim::descriptor_t open_keys() {
    sim::descriptor_t node(open(sim::key_device_t::path, O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    EXPECT_TRUE(node);
    EXPECT_TRUE(property_becomes("/sim/key/open", "1"));
    return node;
  }

  bool property_becomes(const char* path, const char* value) {
    return test_support::loop_until(loop.base(), [&] { return tree.value(path) == value; });
  }

  /// The bytes of one read; nothing when it fails, with errno.
  static std::optional<std::string> read_once(int fd) {
    std::array<char, 768> buffer{};
    const ssize_t size = read(fd, buffer.data(), buffer.size());
    return size < 0 ? std::nullopt : std::optional(std::string(buffer.data(), static_cast<std::size_t>(size)));
  }

  /// Type, code and value of the events of one read.
  static std::vector<std::array<int, 3>> read_events(int fd) {
    std::array<input_event, 32> events{};
    const ssize_t size = read(fd, events.data(), sizeof events);
    std::vector<std::array<int, 3>> found;
    for (std::size_t i = 0; size > 0 && i < static_cast<std::size_t>(size) / sizeof(input_event); ++i) {
      found.push_back({events[i].type, events[i].code, events[i].value});
    }
    return found;
  }

  static bool is_readable(int fd) {
    pollfd waiting{fd, POLLIN, 0};
    return poll(&waiting, 1, 0) == 1;
  }

  zyl::event_loop_t loop;
  sim::property_tree_t tree;
  sim::story_t story{"/tmp/story"};
  sim::testbed_t testbed;
  std::optional<sim::key_device_t> keys{std::in_place, loop.base(), testbed, tree, story};
};

}  // namespace

TEST_F(KeyDevice, TellsItsPath) {
  EXPECT_EQ(tree.value("/sim/key/path"), "/dev/input/event0");
  EXPECT_EQ(tree.value("/sim/key/device"), "present");
  EXPECT_EQ(tree.value("/sim/key/open"), "0");
  ASSERT_NE(tree.find("/sim/key/bytes"), nullptr);
  EXPECT_EQ(tree.value("/sim/key/bytes"), "");
}

TEST_F(KeyDevice, GivesAReportForEachKeyInOneReadEach) {
  const auto node = open_keys();
  tree.set("/sim/key/id", "press");
  tree.set("/sim/key/id", "repeat");
  tree.set("/sim/key/reset", "release");
  using event_t = std::array<int, 3>;
  const event_t end_of_report{EV_SYN, SYN_REPORT, 0};
  EXPECT_THAT(read_events(node.get()), ElementsAre(event_t{EV_KEY, KEY_F1, 1}, end_of_report));
  EXPECT_THAT(read_events(node.get()), ElementsAre(event_t{EV_KEY, KEY_F1, 2}, end_of_report));
  EXPECT_THAT(read_events(node.get()), ElementsAre(event_t{EV_KEY, KEY_F2, 0}, end_of_report));
  EXPECT_EQ(read_once(node.get()), std::nullopt);
  EXPECT_EQ(errno, EAGAIN);
  const std::string told = sim::text_of_file("/tmp/story");
  EXPECT_THAT(told, HasSubstr("\tpanel\tid key pressed\n"));
  EXPECT_THAT(told, HasSubstr("\tpanel\tid key repeats\n"));
  EXPECT_THAT(told, HasSubstr("\tpanel\treset key released\n"));
}

TEST_F(KeyDevice, AWordThatIsNoActionOfAKeyDoesNothing) {
  const auto node = open_keys();
  tree.set("/sim/key/id", "push");
  EXPECT_FALSE(is_readable(node.get()));
  EXPECT_THAT(sim::text_of_file("/tmp/story"), HasSubstr("id key cannot \"push\""));
}

TEST_F(KeyDevice, GivesAnyBytesAsOneRead) {
  const auto node = open_keys();
  tree.set("/sim/key/bytes", "00 ff");
  tree.set("/sim/key/bytes", "no hex");
  tree.set("/sim/key/bytes", "61");
  EXPECT_EQ(read_once(node.get()), std::optional(std::string("\0\xff", 2)));
  EXPECT_EQ(read_once(node.get()), std::optional(std::string("a")));
  EXPECT_FALSE(is_readable(node.get()));
}

TEST_F(KeyDevice, GivesMoreThan32EventsInSeveralReads) {
  const auto node = open_keys();
  std::string hex;
  for (int i = 0; i < 768; ++i) {
    hex += "2a";
  }
  tree.set("/sim/key/bytes", hex + hex + "61");
  EXPECT_EQ(read_once(node.get()), std::optional(std::string(768, '*')));
  EXPECT_EQ(read_once(node.get()), std::optional(std::string(768, '*')));
  EXPECT_EQ(read_once(node.get()), std::optional(std::string("a")));
  EXPECT_FALSE(is_readable(node.get()));
}

TEST_F(KeyDevice, TellsWhatAProgramAsksTheDeviceFor) {
  const auto node = open_keys();
  ASSERT_EQ(ioctl(node.get(), EVIOCGRAB, 1), 0);
  EXPECT_TRUE(property_becomes("/sim/key/grab", "1"));
  ASSERT_EQ(ioctl(node.get(), EVIOCGRAB, 0), 0);
  EXPECT_TRUE(property_becomes("/sim/key/grab", "0"));
  std::array<unsigned int, 2> repeat{400, 80};
  ASSERT_EQ(ioctl(node.get(), EVIOCSREP, repeat.data()), 0);
  EXPECT_TRUE(property_becomes("/sim/key/repeat", "400 80"));
  int version = 0;
  EXPECT_EQ(ioctl(node.get(), EVIOCGVERSION, &version), -1);
  EXPECT_EQ(errno, ENOTTY);
}

TEST_F(KeyDevice, AGrabThatNobodyHoldsCannotBeGivenUp) {
  const auto node = open_keys();
  EXPECT_EQ(ioctl(node.get(), EVIOCGRAB, 0), -1);
  EXPECT_EQ(errno, EINVAL);
  EXPECT_TRUE(property_becomes("/sim/key/grab", "0"));
}

TEST_F(KeyDevice, AGrabIsOneClientsAndEndsWithIt) {
  const auto node = open_keys();
  {
    const sim::descriptor_t other(open(sim::key_device_t::path, O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    ASSERT_EQ(ioctl(other.get(), EVIOCGRAB, 1), 0);
    EXPECT_EQ(ioctl(other.get(), EVIOCGRAB, 1), -1);
    EXPECT_EQ(errno, EBUSY);
    EXPECT_EQ(ioctl(node.get(), EVIOCGRAB, 1), -1);
    EXPECT_EQ(errno, EBUSY);
    EXPECT_EQ(ioctl(node.get(), EVIOCGRAB, 0), -1);
    EXPECT_EQ(errno, EINVAL);
  }
  EXPECT_TRUE(test_support::loop_until(loop.base(), [&] { return ioctl(node.get(), EVIOCGRAB, 1) == 0; }));
}

TEST_F(KeyDevice, OnePulledOutFailsEveryReadAndCanComeBack) {
  {
    const auto node = open_keys();
    tree.set("/sim/key/device", "gone");
    EXPECT_TRUE(is_readable(node.get()));
    EXPECT_EQ(read_once(node.get()), std::nullopt);
    EXPECT_EQ(errno, ENODEV);
    EXPECT_EQ(open(sim::key_device_t::path, O_RDONLY | O_CLOEXEC), -1);
    tree.set("/sim/key/id", "press");
    EXPECT_EQ(tree.value("/sim/key/open"), "1");
  }
  EXPECT_TRUE(property_becomes("/sim/key/open", "0"));
  tree.set("/sim/key/device", "present");
  const auto node = open_keys();
  tree.set("/sim/key/id", "press");
  EXPECT_EQ(read_events(node.get()).size(), 2U);
}

TEST_F(KeyDevice, OneThatComesBackIsAnotherOneThanThatPulledOut) {
  auto old = open_keys();
  ASSERT_EQ(ioctl(old.get(), EVIOCGRAB, 1), 0);
  tree.set("/sim/key/device", "gone");
  tree.set("/sim/key/device", "present");
  EXPECT_EQ(tree.value("/sim/key/open"), "1");
  const auto node = open_keys();
  EXPECT_EQ(ioctl(node.get(), EVIOCGRAB, 1), 0);
  tree.set("/sim/key/id", "press");
  EXPECT_EQ(read_once(old.get()), std::nullopt);
  EXPECT_EQ(errno, ENODEV);
  EXPECT_TRUE(test_support::loop_until(loop.base(), [&] { return is_readable(node.get()); }));
  EXPECT_EQ(read_events(node.get()).size(), 2U);
}

TEST_F(KeyDevice, AStateThatItDoesNotKnowChangesNothing) {
  const auto node = open_keys();
  tree.set("/sim/key/device", "broken");
  EXPECT_EQ(tree.value("/sim/key/device"), "present");
  EXPECT_FALSE(is_readable(node.get()));
  tree.set("/sim/key/device", "gone");
  tree.set("/sim/key/device", "broken");
  EXPECT_EQ(tree.value("/sim/key/device"), "gone");
  EXPECT_EQ(open(sim::key_device_t::path, O_RDONLY | O_CLOEXEC), -1);
  EXPECT_THAT(sim::text_of_file("/tmp/story"), HasSubstr("key device cannot be \"broken\""));
}

TEST_F(KeyDevice, AtItsEndEachWakeUpReadsAnEndOfFile) {
  const auto node = open_keys();
  tree.set("/sim/key/id", "press");
  tree.set("/sim/key/device", "ended");
  EXPECT_TRUE(is_readable(node.get()));
  EXPECT_EQ(read_once(node.get()), std::optional(std::string()));
  EXPECT_FALSE(is_readable(node.get()));
  EXPECT_EQ(read_once(node.get()), std::optional(std::string()));
  tree.set("/sim/key/id", "press");
  EXPECT_TRUE(is_readable(node.get()));
  EXPECT_EQ(read_once(node.get()), std::optional(std::string()));
}

TEST_F(KeyDevice, AfterItsEndItCanGoOn) {
  const auto node = open_keys();
  tree.set("/sim/key/device", "ended");
  EXPECT_EQ(read_once(node.get()), std::optional(std::string()));
  tree.set("/sim/key/device", "present");
  EXPECT_FALSE(is_readable(node.get()));
  tree.set("/sim/key/reset", "press");
  EXPECT_EQ(read_events(node.get()).size(), 2U);
}

TEST_F(KeyDevice, KeysThatNobodyHasOpenAreLost) {
  tree.set("/sim/key/id", "press");
  const auto node = open_keys();
  EXPECT_FALSE(is_readable(node.get()));
}

TEST_F(KeyDevice, EndsWhileAProgramHasItOpen) {
  const auto node = open_keys();
  keys.reset();
  EXPECT_EQ(read_once(node.get()), std::nullopt);
  EXPECT_EQ(errno, ENODEV);
}
