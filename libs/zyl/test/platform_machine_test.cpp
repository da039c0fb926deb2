#include <gtest/gtest.h>

#include "test_support/fake_udev.h"
#include "zyl/platform.h"

using zyl::platform_t;

namespace {

/// What the kernel's files tell of the machine.
class PlatformMachine : public testing::Test {
 protected:
  PlatformMachine() {
    machine.write("/proc/cpuinfo", "processor : 0\nFeatures : fp asimd\n");
    machine.write("/proc/1/cgroup", "0::/init.scope\n");
    machine.write("/proc/self/mountinfo", "21 1 8:1 / / rw shared:1 - ext4 /dev/root rw\n");
  }

  test_support::fake_udev_t machine;
};

}  // namespace

TEST_F(PlatformMachine, PlainOneIsNeitherVirtualNorAContainer) {
  EXPECT_FALSE(platform_t::is_hypervisor());
  EXPECT_FALSE(platform_t::is_container());
}

TEST_F(PlatformMachine, IsVirtualWhenAnyProcessorTellsOfAHypervisor) {
  machine.write("/proc/cpuinfo", "processor : 0\nflags : fpu vme\nprocessor : 1\nflags : fpu hypervisor vme\n");
  EXPECT_TRUE(platform_t::is_hypervisor());
  EXPECT_FALSE(platform_t::is_container());
}

TEST_F(PlatformMachine, IsAContainerByTheControlGroupAlone) {
  machine.write("/proc/1/cgroup", "1:name=systemd:/\n0::/docker/12ab\n");
  EXPECT_TRUE(platform_t::is_container());
  EXPECT_FALSE(platform_t::is_hypervisor());
}

TEST_F(PlatformMachine, IsAContainerByTheMountsAlone) {
  machine.write("/proc/self/mountinfo", "21 1 8:1 / / rw - ext4 /dev/root rw\n22 21 0:9 / /x rw - overlay docker rw\n");
  EXPECT_TRUE(platform_t::is_container());
  EXPECT_FALSE(platform_t::is_hypervisor());
}

TEST_F(PlatformMachine, BoardIsReadOnceForTheLifeOfTheProcess) {
  const std::string path = "/sys/devices/pci0000:00/0000:00:19.0/pxa2xx-spi.8/spi_master/spi1/spi-ZYL0002:00/board_id";
  machine.write(path, "7\n");
  EXPECT_EQ(platform_t::board_id(), 7);
  machine.write(path, "8\n");
  EXPECT_EQ(platform_t::board_id(), 7);
}
