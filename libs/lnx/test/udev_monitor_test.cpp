#include "lnx/src/udev_monitor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <spdlog/spdlog.h>

#include <memory>
#include <string>
#include <vector>

#include "test_support/fake_udev.h"
#include "test_support/loop_until.h"
#include "zyl/event_loop.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::UnorderedElementsAre;

class udev_monitor : public testing::Test {
 protected:
  void watch(const std::string& subsystem, const std::string& devtype) {
    monitor = std::make_unique<lnx::udev_monitor_t>(loop.base(), subsystem, devtype);
    monitor->added.connect([this](const lnx::udev_device_t& device) { events.push_back("+" + device.sysname); });
    monitor->removed.connect([this](const lnx::udev_device_t& device) { events.push_back("-" + device.sysname); });
  }

  bool heard(size_t count) {
    return test_support::loop_until(loop.base(), [this, count] { return events.size() >= count; });
  }

  std::vector<std::string> scanned() {
    events.clear();
    monitor->scan();
    return events;
  }

  test_support::fake_udev_t testbed;
  zyl::event_loop_t loop;
  std::unique_ptr<lnx::udev_monitor_t> monitor;
  std::vector<std::string> events;
};

TEST_F(udev_monitor, raises_added_and_removed) {
  watch("misc", "");
  const auto syspath = testbed.add("misc", "one");
  testbed.tell(syspath, "remove");
  ASSERT_TRUE(heard(2));
  EXPECT_THAT(events, ElementsAre("+one", "-one"));
}

TEST_F(udev_monitor, raises_nothing_for_a_change) {
  const auto changed = testbed.add("misc", "changed");
  watch("misc", "");
  testbed.tell(changed, "change");
  testbed.add("misc", "fresh");
  ASSERT_TRUE(heard(1));
  EXPECT_THAT(events, ElementsAre("+fresh"));
}

TEST_F(udev_monitor, hears_only_its_subsystem) {
  watch("misc", "");
  testbed.add("leds", "lamp");
  testbed.add("misc", "mine");
  ASSERT_TRUE(heard(1));
  EXPECT_THAT(events, ElementsAre("+mine"));
}

TEST_F(udev_monitor, with_a_devtype_hears_and_finds_only_that) {
  watch("block", "disk");
  testbed.add("block", "part1", {{"DEVTYPE", "partition"}});
  testbed.add("block", "whole", {{"DEVTYPE", "disk"}});
  ASSERT_TRUE(heard(1));
  EXPECT_THAT(events, ElementsAre("+whole"));
  EXPECT_THAT(scanned(), ElementsAre("+whole"));
}

TEST_F(udev_monitor, without_a_devtype_hears_and_finds_every_device_of_the_subsystem) {
  watch("block", "");
  testbed.add("block", "part1", {{"DEVTYPE", "partition"}});
  testbed.add("block", "whole", {{"DEVTYPE", "disk"}});
  testbed.add("block", "plain");
  ASSERT_TRUE(heard(3));
  EXPECT_THAT(events, ElementsAre("+part1", "+whole", "+plain"));
  EXPECT_THAT(scanned(), UnorderedElementsAre("+part1", "+whole", "+plain"));
}

TEST_F(udev_monitor, finds_nothing_on_a_machine_without_such_devices) {
  watch("misc", "");
  EXPECT_THAT(scanned(), IsEmpty());
}

TEST_F(udev_monitor, scans_in_the_order_of_the_connected_devices) {
  watch("misc", "");
  for (const char* name : {"c", "a", "b"}) {
    testbed.add("misc", name);
  }
  std::vector<std::string> connected;
  for (const auto& device : monitor->connected_devices()) {
    connected.push_back("+" + device.sysname);
  }
  ASSERT_EQ(connected.size(), 3U);
  EXPECT_EQ(scanned(), connected);
}

TEST_F(udev_monitor, delivers_the_tags_of_a_device) {
  watch("misc", "");
  std::vector<std::string> tags;
  monitor->added.connect([&tags](const lnx::udev_device_t& device) { tags = device.tags; });
  testbed.add("misc", "tagged", {{"TAGS", ":seat:uaccess:"}});
  ASSERT_TRUE(heard(1));
  EXPECT_THAT(tags, IsSupersetOf({"seat", "uaccess"}));  // libudev puts an empty one before them
}

TEST_F(udev_monitor, tells_those_who_derive_from_it_after_each_event) {
  class derived_t : public lnx::udev_monitor_t {
   public:
    derived_t(event_base* base, std::vector<std::string>& told) : udev_monitor_t(base, "misc", ""), calls(told) {}
    void on_ready(int ready) override { calls.push_back(ready == fd() ? "ready" : "another descriptor"); }

   private:
    std::vector<std::string>& calls;
  };
  derived_t derived(loop.base(), events);
  derived.added.connect([this](const lnx::udev_device_t& device) { events.push_back("+" + device.sysname); });
  testbed.add("misc", "one");
  testbed.add("misc", "two");
  ASSERT_TRUE(heard(4));
  EXPECT_THAT(events, ElementsAre("+one", "ready", "+two", "ready"));
}

TEST_F(udev_monitor, is_on_its_loop_for_as_long_as_it_lives) {
  const int without = event_base_get_num_events(loop.base(), EVENT_BASE_COUNT_ADDED);
  watch("misc", "");
  EXPECT_EQ(event_base_get_num_events(loop.base(), EVENT_BASE_COUNT_ADDED), without + 1);
  monitor.reset();
  EXPECT_EQ(event_base_get_num_events(loop.base(), EVENT_BASE_COUNT_ADDED), without);
}

TEST_F(udev_monitor, has_a_logger_of_its_own) { EXPECT_NE(spdlog::get("lin_udev"), nullptr); }

}  // namespace
