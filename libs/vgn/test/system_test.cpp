#include "vgn/src/system.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <fstream>
#include <memory>
#include <string>
#include <utility>

#include "libs/vgn/test/system_fixture.h"
#include "test_support/log_capture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class streamer_system : public system_fixture {};

TEST_F(streamer_system, opens_a_device_that_was_there_before_the_start) {
  system.device_added(misc_device("vgnsys-0"));
  EXPECT_FALSE(driver.is_open);
  EXPECT_THAT(events, IsEmpty());

  system.start();
  EXPECT_EQ(driver.opened_node, "/dev/vgnsys-0");
  EXPECT_THAT(events, ElementsAre("added /dev/vgnsys-0"));
}

TEST_F(streamer_system, opens_a_device_that_comes_after_the_start) {
  system.start();
  EXPECT_THAT(events, IsEmpty());
  system.device_added(misc_device("vgnsys-1"));
  EXPECT_TRUE(driver.is_open);
  EXPECT_THAT(events, ElementsAre("added /dev/vgnsys-1"));
}

TEST_F(streamer_system, ignores_devices_of_other_names) {
  system.start();
  system.device_added(misc_device("zvid-hbr-in-h264Stream0"));
  system.device_added(misc_device("xvgnsys-0"));
  system.device_removed(misc_device("rtc"));
  EXPECT_FALSE(driver.is_open);
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(streamer_system, stays_with_the_first_of_two_devices) {
  open();
  system.device_added(misc_device("vgnsys-1"));
  system.device_removed(misc_device("vgnsys-1"));
  EXPECT_THAT(events, IsEmpty());
  EXPECT_TRUE(driver.is_open);
  EXPECT_EQ(system.node(), "/dev/vgnsys-0");
}

TEST_F(streamer_system, closes_a_device_that_goes_and_takes_the_next_one) {
  open();
  system.device_removed(misc_device("vgnsys-0"));
  EXPECT_FALSE(driver.is_open);
  EXPECT_EQ(system.node(), "");
  system.device_added(misc_device("vgnsys-1"));
  EXPECT_THAT(events, ElementsAre("removed /dev/vgnsys-0", "added /dev/vgnsys-1"));
}

TEST_F(streamer_system, started_twice_opens_once) {
  open();
  system.start();
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(streamer_system, stops_without_a_signal_and_can_be_started_again) {
  open();
  system.stop();
  EXPECT_FALSE(driver.is_open);
  EXPECT_THAT(events, IsEmpty());
  system.start();
  EXPECT_THAT(events, ElementsAre("added /dev/vgnsys-0"));
}

TEST_F(streamer_system, remembers_what_comes_and_goes_while_it_is_stopped) {
  open();
  system.stop();
  system.device_removed(misc_device("vgnsys-0"));
  system.device_added(misc_device("vgnsys-2"));
  EXPECT_THAT(events, IsEmpty());
  system.start();
  EXPECT_THAT(events, ElementsAre("added /dev/vgnsys-2"));
}

TEST_F(streamer_system, that_cannot_open_its_device_says_so_and_waits_for_the_next) {
  const test_support::log_capture_t log("drv_vgnstreamer");
  driver.open_result = -EACCES;
  system.device_added(misc_device("vgnsys-0"));
  system.start();
  EXPECT_THAT(events, IsEmpty());
  EXPECT_THAT(log.lines(), ElementsAre("open /dev/vgnsys-0 failed errno=13"));

  driver.open_result = 0;
  system.device_removed(misc_device("vgnsys-0"));
  system.device_added(misc_device("vgnsys-0"));
  EXPECT_THAT(events, ElementsAre("added /dev/vgnsys-0"));
}

TEST_F(streamer_system, tries_a_device_again_that_is_announced_again) {
  driver.open_result = -EACCES;
  system.start();
  system.device_added(misc_device("vgnsys-0"));
  driver.open_result = 0;
  system.device_added(misc_device("vgnsys-1"));
  EXPECT_THAT(events, IsEmpty());
  system.device_added(misc_device("vgnsys-0"));
  system.device_added(misc_device("vgnsys-0"));
  EXPECT_THAT(events, ElementsAre("added /dev/vgnsys-0"));
}

TEST_F(streamer_system, closes_a_device_that_it_cannot_listen_to) {
  const test_support::log_capture_t log("drv_vgnstreamer");
  // An event loop takes no plain file.
  const std::string node = "/tmp/vgnsys-0";
  std::ofstream(node) << "no events";
  auto owned = std::make_unique<vgn::device_t>();
  const auto& device = *owned;
  vgn::system_t deaf(loop.base(), std::move(owned), false);
  int told = 0;
  deaf.added.connect([&told](const std::string& /*node*/) { ++told; });
  deaf.start();
  deaf.device_added(lnx::udev_device_t({.subsystem = "misc", .sysname = "vgnsys-0", .devnode = node}));
  EXPECT_EQ(device.fd(), -1);
  EXPECT_EQ(told, 0);
  EXPECT_THAT(log.lines(), ElementsAre("listen to /tmp/vgnsys-0 failed"));
}

TEST_F(streamer_system, passes_the_drivers_events_on_in_order) {
  open();
  driver.tell(5, 20);
  driver.tell(6, 21);
  driver.tell(99, 7);
  ASSERT_TRUE(heard(3));
  EXPECT_THAT(events, ElementsAre("link 20 5", "link 21 6", "link 7 99"));
}

TEST_F(streamer_system, reads_more_events_than_one_read_holds) {
  open();
  for (uint32_t id = 0; id < 200; ++id) {
    driver.tell(5, id);
  }
  ASSERT_TRUE(heard(200));
  EXPECT_EQ(events.front(), "link 0 5");
  EXPECT_EQ(events.back(), "link 199 5");
}

TEST_F(streamer_system, drops_the_rest_of_a_read_that_is_no_whole_record) {
  open();
  const std::array<uint32_t, 3> one_and_a_half{5, 20, 6};
  driver.tell_bytes(std::as_bytes(std::span(one_and_a_half)));
  ASSERT_TRUE(heard(1));
  driver.tell(7, 21);
  ASSERT_TRUE(heard(2));
  EXPECT_THAT(events, ElementsAre("link 20 5", "link 21 7"));
}

TEST_F(streamer_system, stops_listening_at_the_end_of_the_events) {
  const test_support::log_capture_t log("drv_vgnstreamer");
  open();
  driver.end_events();
  ASSERT_TRUE(test_support::loop_until(loop.base(), [&log] { return !log.lines().empty(); }));
  // A descriptor still waited for would be read, and logged, at every turn.
  for (int turn = 0; turn < 5; ++turn) {
    event_base_loop(loop.base(), EVLOOP_NONBLOCK);
  }
  EXPECT_THAT(log.lines(), ElementsAre("read /dev/vgnsys-0 failed errno=0"));
  EXPECT_TRUE(driver.is_open);
}

TEST_F(streamer_system, stopped_by_a_receiver_passes_no_further_event_on) {
  open();
  system.link_changed.connect([this](uint32_t, uint32_t) { system.stop(); });
  driver.tell(5, 20);
  driver.tell(5, 21);
  ASSERT_TRUE(heard(1));
  event_base_loop(loop.base(), EVLOOP_NONBLOCK);
  EXPECT_THAT(events, ElementsAre("link 20 5"));
}

}  // namespace
