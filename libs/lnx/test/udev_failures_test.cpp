// What the monitor does when libudev or libevent fail. Some of their functions are defined here anew, in front of the
// libraries': each does what the library does, unless a test has it fail.

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <string>
#include <vector>

#include "lnx/src/udev_monitor.h"
#include "test_support/fake_udev.h"
#include "zyl/event_loop.h"

namespace {

/// The function that fails, or the syspath of which no device can be made.
std::string failing;

/// The library's own function of this name.
template <typename function_t>
function_t* library(const char* name, function_t* /*type*/) {
  return reinterpret_cast<function_t*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

udev* udev_new() { return __func__ == failing ? nullptr : library(__func__, udev_new)(); }

udev_monitor* udev_monitor_new_from_netlink(udev* context, const char* name) {
  return __func__ == failing ? nullptr : library(__func__, udev_monitor_new_from_netlink)(context, name);
}

int udev_monitor_filter_add_match_subsystem_devtype(udev_monitor* monitor, const char* subsystem, const char* devtype) {
  return __func__ == failing
             ? -1
             : library(__func__, udev_monitor_filter_add_match_subsystem_devtype)(monitor, subsystem, devtype);
}

int udev_monitor_enable_receiving(udev_monitor* monitor) {
  return __func__ == failing ? -1 : library(__func__, udev_monitor_enable_receiving)(monitor);
}

udev_enumerate* udev_enumerate_new(udev* context) {
  return __func__ == failing ? nullptr : library(__func__, udev_enumerate_new)(context);
}

int udev_enumerate_add_match_subsystem(udev_enumerate* enumerate, const char* subsystem) {
  return __func__ == failing ? -1 : library(__func__, udev_enumerate_add_match_subsystem)(enumerate, subsystem);
}

int udev_enumerate_add_match_property(udev_enumerate* enumerate, const char* property, const char* value) {
  return __func__ == failing ? -1 : library(__func__, udev_enumerate_add_match_property)(enumerate, property, value);
}

int udev_enumerate_scan_devices(udev_enumerate* enumerate) {
  return __func__ == failing ? -1 : library(__func__, udev_enumerate_scan_devices)(enumerate);
}

udev_device* udev_device_new_from_syspath(udev* context, const char* syspath) {
  return syspath == failing ? nullptr : library(__func__, udev_device_new_from_syspath)(context, syspath);
}

const char* udev_list_entry_get_name(udev_list_entry* entry) {
  return __func__ == failing ? "TWICE" : library(__func__, udev_list_entry_get_name)(entry);
}

event* event_new(event_base* base, evutil_socket_t fd, short events, event_callback_fn callback, void* argument) {
  return __func__ == failing ? nullptr : library(__func__, event_new)(base, fd, events, callback, argument);
}

int event_add(event* added, const timeval* timeout) {
  return __func__ == failing ? -1 : library(__func__, event_add)(added, timeout);
}

}  // extern "C"

namespace {

/// A monitor without a loop that remembers what a scan finds.
class scanner_t : public lnx::udev_monitor_abc {
 public:
  scanner_t() : udev_monitor_abc("block", "disk") {}

  void device_added(const lnx::udev_device_t& device) override { found.push_back(device.sysname); }
  void device_removed(const lnx::udev_device_t& /*device*/) override {}
  using udev_monitor_abc::receive;

  std::vector<std::string> found;
};

class udev_failures : public testing::Test {
 protected:
  ~udev_failures() override { failing.clear(); }

  /// The assertion ends the process when `use` meets the failure of `function`.
  static void expect_assertion(const char* function, const std::function<void()>& use, const std::string& text) {
    failing = function;
    EXPECT_EXIT(use(), testing::KilledBySignal(SIGABRT), text) << "when " << function << " fails";
    failing.clear();
  }

  test_support::fake_udev_t testbed;
};

TEST_F(udev_failures, of_making_a_monitor_end_the_process) {
  const auto make = [] { const scanner_t made; };
  expect_assertion("udev_monitor_new_from_netlink", make, "Assertion `m_monitor' failed");
  for (const char* function : {"udev_monitor_filter_add_match_subsystem_devtype", "udev_monitor_enable_receiving"}) {
    expect_assertion(function, make, "udev_monitor_abc::udev_monitor_abc.*Assertion `!err' failed");
  }
}

TEST_F(udev_failures, of_looking_for_devices_end_the_process) {
  for (const char* function : {"udev_enumerate_new", "udev_enumerate_add_match_subsystem",
                               "udev_enumerate_add_match_property", "udev_enumerate_scan_devices"}) {
    expect_assertion(
        function, [] { scanner_t().scan(); }, "connected_devices.*Assertion `!err' failed");
  }
}

TEST_F(udev_failures, to_have_a_context_end_the_process_with_the_first_use) {
  failing = "udev_new";
  const scanner_t made;
  expect_assertion(
      "udev_new", [] { scanner_t().fd(); }, "fd.*Assertion `m_monitor' failed");
  expect_assertion(
      "udev_new", [] { scanner_t().receive(); }, "receive.*Assertion `mon' failed");
  expect_assertion(
      "udev_new", [] { scanner_t().connected_devices(); }, "connected_devices.*Assertion `!err' failed");
  expect_assertion(
      "udev_new", [] { scanner_t().scan(); }, "connected_devices.*Assertion `!err' failed");
}

TEST_F(udev_failures, of_the_loop_end_the_process) {
  const zyl::event_loop_t loop;
  const auto make = [&loop] { const lnx::udev_monitor_t made(loop.base(), "block", "disk"); };
  expect_assertion("event_new", make, "udev_monitor_t.*Assertion `notifier' failed");
  expect_assertion("event_add", make, "udev_monitor_t.*Assertion `event_add.* failed");
}

TEST_F(udev_failures, to_name_a_property_only_once_end_the_process) {
  const auto syspath = testbed.add("block", "whole", {{"DEVTYPE", "disk"}});
  const zyl::intrusive_ptr<udev> context(udev_new());
  const zyl::intrusive_ptr<udev_device> device(udev_device_new_from_syspath(context.get(), syspath.c_str()));
  ASSERT_TRUE(device);
  expect_assertion(
      "udev_list_entry_get_name", [&device] { const lnx::udev_device_t made(device); },
      "Assertion `res.second' failed");
}

TEST_F(udev_failures, to_make_a_device_leave_it_out_of_the_scan) {
  testbed.add("block", "first", {{"DEVTYPE", "disk"}});
  const auto gone = testbed.add("block", "gone", {{"DEVTYPE", "disk"}});
  testbed.add("block", "last", {{"DEVTYPE", "disk"}});
  scanner_t scanner;
  scanner.scan();
  ASSERT_THAT(scanner.found, testing::UnorderedElementsAre("first", "gone", "last"));

  failing = gone;
  scanner.found.clear();
  scanner.scan();
  EXPECT_THAT(scanner.found, testing::UnorderedElementsAre("first", "last"));
}

}  // namespace
