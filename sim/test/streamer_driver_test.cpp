#include "sim/streamer_driver.h"

#include <event2/event.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <libudev.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <fstream>

#include "sim/descriptor.h"
#include "zyl/event_loop.h"

namespace {

template <typename T, T* (*unref)(T*)>
struct udev_unref_t {
  void operator()(T* object) const { unref(object); }
};
using udev_t = std::unique_ptr<udev, udev_unref_t<udev, udev_unref>>;
using monitor_t = std::unique_ptr<udev_monitor, udev_unref_t<udev_monitor, udev_monitor_unref>>;
using device_t = std::unique_ptr<udev_device, udev_unref_t<udev_device, udev_device_unref>>;
using enumerate_t = std::unique_ptr<udev_enumerate, udev_unref_t<udev_enumerate, udev_enumerate_unref>>;

using sim::descriptor_t;

descriptor_t open_node(const std::string& path) {
  return descriptor_t(::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
}

/// A client of the emulated driver, in the same process: this program sees the testbed as a client does.
class StreamerDriver : public testing::Test {
 protected:
  /// Runs the loop until it holds; false after a generous time.
  template <typename Condition>
  bool turn_until(Condition holds) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!holds()) {
      if (std::chrono::steady_clock::now() > limit) {
        return false;
      }
      const timeval pause{0, 1000};
      event_base_loopexit(loop.base(), &pause);
      event_base_dispatch(loop.base());
    }
    return true;
  }

  bool property_becomes(const std::string& path, const std::string& value) {
    return turn_until([&] { return properties.value(path) == value; });
  }

  static std::string file_with(const std::string& bytes) {
    const std::string path = "/tmp/display.bin";
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }

  static uint32_t connected(int fd, uint32_t id) {
    vgn::value_record_t record{id, 77};
    EXPECT_EQ(::ioctl(fd, vgn::output_connected_request, &record), 0);
    return record.value;
  }

  /// Opens the node and waits until the driver knows, from when on it gives events.
  descriptor_t open_and_wait(const std::string& path) {
    descriptor_t node = open_node(path);
    EXPECT_GE(node.get(), 0);
    EXPECT_TRUE(property_becomes("/sim/streamer/open", "1"));
    return node;
  }

  static constexpr uint32_t first_output = 16;

  zyl::event_loop_t loop;
  sim::property_tree_t properties;
  sim::story_t story;
  sim::testbed_t testbed;
  std::optional<sim::streamer_driver_t> driver{std::in_place, loop.base(), testbed, properties, story, 2};
};

std::string found_node(udev* context) {
  const enumerate_t enumerate(udev_enumerate_new(context));
  udev_enumerate_add_match_subsystem(enumerate.get(), "misc");
  udev_enumerate_scan_devices(enumerate.get());
  udev_list_entry* entry = udev_enumerate_get_list_entry(enumerate.get());
  if (entry == nullptr) {
    return "";
  }
  const device_t device(udev_device_new_from_syspath(context, udev_list_entry_get_name(entry)));
  return udev_device_get_devnode(device.get());
}

TEST_F(StreamerDriver, IsFoundByUdevAsAMiscDevice) {
  const udev_t context(udev_new());
  EXPECT_EQ(found_node(context.get()), "/dev/vgnsys-0");
}

TEST_F(StreamerDriver, ListsItsResourcesToAClient) {
  const descriptor_t node = open_node("/dev/vgnsys-0");
  ASSERT_GE(node.get(), 0);
  vgn::resources_record_t record{};
  ASSERT_EQ(::ioctl(node.get(), vgn::resources_request, &record), 0);
  std::vector<uint32_t> inputs(record.input_count);
  std::vector<uint32_t> outputs(record.output_count);
  record.input_ids = reinterpret_cast<uint64_t>(inputs.data());
  record.output_ids = reinterpret_cast<uint64_t>(outputs.data());
  ASSERT_EQ(::ioctl(node.get(), vgn::resources_request, &record), 0);
  EXPECT_EQ(inputs.front(), 0U);
  EXPECT_EQ(outputs.front(), first_output);
}

TEST_F(StreamerDriver, FailsARequestThatItDoesNotKnow) {
  const descriptor_t node = open_node("/dev/vgnsys-0");
  vgn::value_record_t record{};
  EXPECT_EQ(::ioctl(node.get(), _IOW('V', 99, vgn::value_record_t), &record), -1);
  EXPECT_EQ(errno, ENOTTY);
}

TEST_F(StreamerDriver, GivesOneRecordAReadWhenDisplaysComeAndGo) {
  const descriptor_t node = open_and_wait("/dev/vgnsys-0");
  properties.set("/sim/hdmi/0/edid", file_with("x"));
  EXPECT_EQ(connected(node.get(), first_output), 1U);
  properties.set("/sim/hdmi/0/edid", "");
  EXPECT_EQ(connected(node.get(), first_output), 0U);
  std::vector<vgn::vgn_event_t> events(8);
  const size_t room = events.size() * sizeof(vgn::vgn_event_t);
  ASSERT_EQ(::read(node.get(), events.data(), room), ssize_t{sizeof(vgn::vgn_event_t)});
  EXPECT_EQ(events[0].type, static_cast<uint32_t>(vgn::link_event_e::output_connection));
  EXPECT_EQ(events[0].id, first_output);
  ASSERT_EQ(::read(node.get(), events.data(), room), ssize_t{sizeof(vgn::vgn_event_t)});
  EXPECT_EQ(events[0].type, static_cast<uint32_t>(vgn::link_event_e::output_disconnection));
  EXPECT_EQ(::read(node.get(), events.data(), room), -1);
  EXPECT_EQ(errno, EAGAIN);
}

TEST_F(StreamerDriver, DropsEventsThatNobodyHasOpened) {
  properties.set("/sim/hdmi/0/edid", file_with("x"));
  const descriptor_t node = open_and_wait("/dev/vgnsys-0");
  vgn::vgn_event_t event{};
  EXPECT_EQ(::read(node.get(), &event, sizeof event), -1);
  EXPECT_EQ(errno, EAGAIN);
}

TEST_F(StreamerDriver, ForgetsEventsThatItsLastClientDidNotRead) {
  {
    const descriptor_t node = open_and_wait("/dev/vgnsys-0");
    properties.set("/sim/hdmi/0/edid", file_with("x"));
  }
  EXPECT_TRUE(property_becomes("/sim/streamer/open", "0"));
  const descriptor_t node = open_and_wait("/dev/vgnsys-0");
  vgn::vgn_event_t event{};
  EXPECT_EQ(::read(node.get(), &event, sizeof event), -1);
}

TEST_F(StreamerDriver, GivesTheBytesOfTheFileAsEdid) {
  std::string bytes(384, '\0');
  bytes[0] = 'a';
  bytes[383] = 'z';
  properties.set("/sim/hdmi/0/edid", file_with(bytes));
  const descriptor_t node = open_node("/dev/vgnsys-0");
  vgn::edid_record_t record{first_output, 0, 0, 0};
  ASSERT_EQ(::ioctl(node.get(), vgn::read_edid_request, &record), 0);
  ASSERT_EQ(record.size, 384U);
  std::string read(384, '?');
  record.bytes = reinterpret_cast<uint64_t>(read.data());
  ASSERT_EQ(::ioctl(node.get(), vgn::read_edid_request, &record), 0);
  EXPECT_EQ(read, bytes);
  EXPECT_TRUE(property_becomes("/sim/hdmi/0/edid_reads", "1"));
}

TEST_F(StreamerDriver, PlugsADisplayWithoutAnyEdidBytes) {
  properties.set("/sim/hdmi/1/edid", file_with(""));
  EXPECT_EQ(properties.value("/sim/hdmi/1/connected"), "1");
  const descriptor_t node = open_node("/dev/vgnsys-0");
  vgn::edid_record_t record{first_output + 1, 0, 99, 0};
  ASSERT_EQ(::ioctl(node.get(), vgn::read_edid_request, &record), 0);
  EXPECT_EQ(record.size, 0U);
}

TEST_F(StreamerDriver, LeavesTheConnectorAsItIsForAFileThatCannotBeRead) {
  properties.set("/sim/hdmi/0/edid", "/tmp/there is no such file");
  EXPECT_EQ(properties.value("/sim/hdmi/0/connected"), "0");
  properties.set("/sim/hdmi/0/edid", "/tmp");
  EXPECT_EQ(properties.value("/sim/hdmi/0/connected"), "0");
}

TEST_F(StreamerDriver, PublishesWhatAClientPrograms) {
  const descriptor_t node = open_node("/dev/vgnsys-0");
  vgn::timing_record_t timing{first_output, {148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5}, {}};
  ASSERT_EQ(::ioctl(node.get(), vgn::set_timing_request, &timing), 0);
  EXPECT_TRUE(property_becomes("/sim/hdmi/0/timing", "148500 1920 2008 2052 2200 1080 1084 1089 1125 5"));
  EXPECT_EQ(properties.value("/sim/hdmi/1/timing"), "");
}

TEST_F(StreamerDriver, FailsEverythingWithNoSuchDeviceOnceItIsPulledOut) {
  const descriptor_t node = open_and_wait("/dev/vgnsys-0");
  driver->set_present(false);
  pollfd readable{node.get(), POLLIN, 0};
  ASSERT_EQ(::poll(&readable, 1, 20000), 1);
  vgn::vgn_event_t event{};
  EXPECT_EQ(::read(node.get(), &event, sizeof event), -1);
  EXPECT_EQ(errno, ENODEV);
  vgn::value_record_t record{first_output, 0};
  EXPECT_EQ(::ioctl(node.get(), vgn::output_connected_request, &record), -1);
  EXPECT_EQ(errno, ENODEV);
  EXPECT_EQ(open_node("/dev/vgnsys-0").get(), -1);
}

TEST_F(StreamerDriver, ComesBackUnderTheNextNumberWithItsDisplaysAndWithoutTheirTimings) {
  properties.set("/sim/hdmi/0/edid", file_with("x"));
  const descriptor_t old_node = open_node("/dev/vgnsys-0");
  vgn::timing_record_t timing{first_output, {148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5}, {}};
  ASSERT_EQ(::ioctl(old_node.get(), vgn::set_timing_request, &timing), 0);
  properties.set("/sim/streamer/present", "0");
  properties.set("/sim/streamer/present", "1");
  EXPECT_TRUE(property_becomes("/sim/hdmi/0/timing", ""));
  const descriptor_t node = open_and_wait("/dev/vgnsys-1");
  EXPECT_EQ(connected(node.get(), first_output), 1U);
}

TEST_F(StreamerDriver, TellsUdevWhenItGoesAndReturns) {
  const udev_t context(udev_new());
  const monitor_t monitor(udev_monitor_new_from_netlink(context.get(), "udev"));
  udev_monitor_filter_add_match_subsystem_devtype(monitor.get(), "misc", nullptr);
  ASSERT_EQ(udev_monitor_enable_receiving(monitor.get()), 0);
  driver->set_present(false);
  driver->set_present(true);
  const device_t removed(udev_monitor_receive_device(monitor.get()));
  ASSERT_NE(removed, nullptr);
  EXPECT_STREQ(udev_device_get_action(removed.get()), "remove");
  EXPECT_STREQ(udev_device_get_sysname(removed.get()), "vgnsys-0");
  const device_t added(udev_monitor_receive_device(monitor.get()));
  ASSERT_NE(added, nullptr);
  EXPECT_STREQ(udev_device_get_action(added.get()), "add");
  EXPECT_STREQ(udev_device_get_devnode(added.get()), "/dev/vgnsys-1");
}

TEST_F(StreamerDriver, EndsWhileAClientStillHasItOpen) {
  const descriptor_t node = open_and_wait("/dev/vgnsys-0");
  driver.reset();
  vgn::value_record_t record{first_output, 0};
  EXPECT_EQ(::ioctl(node.get(), vgn::output_connected_request, &record), -1);
  EXPECT_EQ(errno, ENODEV);
}

}  // namespace
