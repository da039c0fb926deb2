#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "test_support/fake_udev.h"
#include "test_support/fake_vgn_device.h"
#include "test_support/loop_until.h"
#include "vgn/src/system.h"
#include "zyl/event_loop.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class streamer_system_by_udev : public testing::Test {
 protected:
  void make_system() {
    system = std::make_unique<vgn::system_t>(loop.base(), driver.make_device(), true);
    system->added.connect([this](const std::string& node) { events.push_back("added " + node); });
    system->removed.connect([this](const std::string& node) { events.push_back("removed " + node); });
  }

  std::string plug(const char* name) { return testbed.add("misc", name, {{"DEVNAME", std::string("/dev/") + name}}); }

  bool heard(size_t count) {
    return test_support::loop_until(loop.base(), [this, count] { return events.size() >= count; });
  }

  test_support::fake_udev_t testbed;
  test_support::fake_vgn_driver_t driver;
  zyl::event_loop_t loop;
  std::unique_ptr<vgn::system_t> system;
  std::vector<std::string> events;
};

TEST_F(streamer_system_by_udev, finds_a_device_that_is_there) {
  plug("rtc0");
  plug("vgnsys-0");
  make_system();
  EXPECT_THAT(events, IsEmpty());
  system->start();
  EXPECT_THAT(events, ElementsAre("added /dev/vgnsys-0"));
}

TEST_F(streamer_system_by_udev, hears_of_a_device_that_comes_goes_and_comes_back) {
  make_system();
  system->start();
  const auto syspath = plug("vgnsys-0");
  ASSERT_TRUE(heard(1));
  testbed.tell(syspath, "remove");
  ASSERT_TRUE(heard(2));
  testbed.tell(syspath, "add");
  ASSERT_TRUE(heard(3));
  EXPECT_THAT(events, ElementsAre("added /dev/vgnsys-0", "removed /dev/vgnsys-0", "added /dev/vgnsys-0"));
}

TEST_F(streamer_system_by_udev, takes_a_device_once_that_is_both_scanned_and_announced) {
  make_system();
  const auto syspath = plug("vgnsys-0");
  system->start();
  testbed.tell(syspath, "remove");
  ASSERT_TRUE(heard(2));
  EXPECT_THAT(events, ElementsAre("added /dev/vgnsys-0", "removed /dev/vgnsys-0"));
}

TEST_F(streamer_system_by_udev, takes_the_second_device_when_the_first_goes) {
  const auto syspath = plug("vgnsys-0");
  make_system();
  system->start();
  plug("vgnsys-1");
  testbed.tell(syspath, "remove");
  ASSERT_TRUE(heard(3));
  EXPECT_THAT(events, ElementsAre("added /dev/vgnsys-0", "removed /dev/vgnsys-0", "added /dev/vgnsys-1"));
}

TEST_F(streamer_system_by_udev, starts_with_what_is_there_whatever_it_knew_before) {
  const auto syspath = plug("vgnsys-0");
  make_system();
  system->start();
  system->stop();
  testbed.remove(syspath);
  const auto second = plug("vgnsys-1");
  system->start();
  EXPECT_THAT(events, ElementsAre("added /dev/vgnsys-0", "added /dev/vgnsys-1"));

  system->stop();
  testbed.remove(second);
  system->start();
  EXPECT_EQ(system->node(), "");
}

}  // namespace
