#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_support/fake_vgn_device.h"
#include "test_support/loop_until.h"
#include "vgn/src/system.h"
#include "zyl/event_loop.h"

/// A system on a driver in memory, without udev.
class system_fixture : public testing::Test {
 protected:
  system_fixture() {
    system.added.connect([this](const std::string& node) { events.push_back("added " + node); });
    system.removed.connect([this](const std::string& node) { events.push_back("removed " + node); });
    system.link_changed.connect([this](uint32_t id, uint32_t type) {
      events.push_back("link " + std::to_string(id) + " " + std::to_string(type));
    });
  }

  static lnx::udev_device_t misc_device(const std::string& sysname) {
    return lnx::udev_device_t({.subsystem = "misc", .sysname = sysname, .devnode = "/dev/" + sysname});
  }

  /// A started system with its device open.
  void open() {
    system.device_added(misc_device("vgnsys-0"));
    system.start();
    events.clear();
  }

  bool heard(size_t count) {
    return test_support::loop_until(loop.base(), [this, count] { return events.size() >= count; });
  }

  test_support::fake_vgn_driver_t driver;
  zyl::event_loop_t loop;
  vgn::system_t system{loop.base(), driver.make_device(), false};
  std::vector<std::string> events;
};
