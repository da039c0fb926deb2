#include "lnx/src/udev_device.h"

#include <gtest/gtest.h>

#include <sstream>

#include "test_support/fake_udev.h"

namespace {

std::string streamed(const lnx::udev_device_t& device) {
  std::ostringstream stream;
  stream << device;
  return stream.str();
}

TEST(udev_device, streams_all_fields_then_properties_then_tags) {
  const lnx::udev_device_t device({.devpath = "/devices/x",
                                   .subsystem = "misc",
                                   .devtype = "kind",
                                   .syspath = "/sys/devices/x",
                                   .sysname = "x7",
                                   .sysnum = "7",
                                   .devnode = "/dev/x7",
                                   .properties = {{"MINOR", "3"}, {"DEVNAME", "/dev/x7"}},
                                   .tags = {"seat", "uaccess"}});

  EXPECT_EQ(streamed(device),
            "udev_device_t(devpath=/devices/x, subsystem=misc, devtype=kind, syspath=/sys/devices/x, sysname=x7, "
            "sysnum=7, devnode=/dev/x7\n"
            "  Properties(\n"
            "    DEVNAME=/dev/x7\n"
            "    MINOR=3\n"
            "),\n"
            "  Tags(\n"
            "    seat\n"
            "    uaccess\n"
            ")");
}

TEST(udev_device, without_properties_and_tags_streams_empty_blocks) {
  EXPECT_EQ(streamed(lnx::udev_device_t(lnx::udev_device_fields_t{})),
            "udev_device_t(devpath=, subsystem=, devtype=, syspath=, sysname=, sysnum=, devnode=\n"
            "  Properties(\n"
            "),\n"
            "  Tags(\n"
            ")");
}

TEST(udev_device, made_from_plain_fields_has_no_handle) {
  EXPECT_FALSE(lnx::udev_device_t(lnx::udev_device_fields_t{}).device);
}

TEST(udev_device, takes_the_fields_of_a_udev_device) {
  test_support::fake_udev_t testbed;
  const auto syspath = testbed.add("misc", "vgnsys-4", {{"DEVNAME", "/dev/vgnsys-4"}, {"COLOR", "red"}});
  const zyl::intrusive_ptr<udev> context(udev_new());
  const lnx::udev_device_t device(
      zyl::intrusive_ptr<udev_device>(udev_device_new_from_syspath(context.get(), syspath.c_str())));

  EXPECT_EQ(device.syspath, syspath);
  EXPECT_EQ("/sys" + device.devpath, syspath);
  EXPECT_EQ(device.subsystem, "misc");
  EXPECT_EQ(device.devtype, "");
  EXPECT_EQ(device.sysname, "vgnsys-4");
  EXPECT_EQ(device.sysnum, "4");
  EXPECT_EQ(device.devnode, "/dev/vgnsys-4");
  ASSERT_TRUE(device.properties.contains("COLOR"));
  EXPECT_EQ(device.properties.at("COLOR"), "red");
  EXPECT_TRUE(device.tags.empty());
  EXPECT_STREQ(udev_device_get_sysname(device.device.get()), "vgnsys-4");
}

}  // namespace
