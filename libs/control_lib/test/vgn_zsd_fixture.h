#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "control_lib/src/vgn_zsd_interface.h"
#include "test_support/fake_vgn_device.h"
#include "test_support/log_capture.h"
#include "test_support/loop_until.h"
#include "zyl/event_loop.h"

/// A mux that blocks the inputs that a test says, and tells when it is initialised.
class stub_mux_t : public control_lib::vgn_zsd_interface_t::mux_logic_t {
 public:
  stub_mux_t(const std::set<int>& blocked_inputs, std::function<void()> tell_init)
      : blocked(blocked_inputs), on_init(std::move(tell_init)) {}
  bool is_input_blocked(int index) const override { return blocked.contains(index); }
  void init(control_lib::vgn_zsd_interface_t& /*interface*/) override { on_init(); }

 private:
  const std::set<int>& blocked;
  std::function<void()> on_init;
};

/// The HDMI interface on a driver in memory with two HDMI inputs (ids 1 and 2), two inject inputs (3 and 4) and two
/// HDMI outputs (20 and 21).
class vgn_zsd_fixture : public testing::Test {
 protected:
  class interface_t : public control_lib::vgn_zsd_interface_t {
   public:
    using vgn_zsd_interface_t::vgn_zsd_interface_t;
    interface_t(event_base* base, std::unique_ptr<vgn::system_t> streamer, std::unique_ptr<mux_logic_t> mux)
        : vgn_zsd_interface_t(base, std::move(streamer), std::move(mux)) {}

    bool owner_calls = true;
    std::vector<std::function<void()>> posted;

   protected:
    void post(std::function<void()> call) override { posted.push_back(std::move(call)); }
    bool is_owner_thread() const override { return owner_calls; }
  };

  vgn_zsd_fixture() {
    driver.inputs[1] = {.name = "hdmi_in_0", .kind = 0, .hw = 1};
    driver.inputs[2] = {.name = "hdmi_in_1", .kind = 4, .hw = 2};
    driver.inputs[3] = {.name = "inject_0", .kind = 1, .hw = 8};
    driver.inputs[4] = {.name = "inject_1", .kind = 1, .hw = 9};
    driver.outputs[20] = {.name = "hdmi_out_0", .kind = 0};
    driver.outputs[21] = {.name = "hdmi_out_1", .kind = 0};
    auto owned = std::make_unique<vgn::system_t>(loop.base(), driver.make_device(), false);
    system = owned.get();
    auto mux = std::make_unique<stub_mux_t>(blocked_inputs, [this] { told_at_mux_init.push_back(log.lines()); });
    interface = std::make_unique<interface_t>(loop.base(), std::move(owned), std::move(mux));
  }

  static lnx::udev_device_t streamer_device() {
    return lnx::udev_device_t({.subsystem = "misc", .sysname = "vgnsys-0", .devnode = "/dev/vgnsys-0"});
  }

  /// The streamer device is there and in use; what was told so far is forgotten.
  void bring_up() {
    system->device_added(streamer_device());
    interface->start();
    forget();
  }

  void forget() {
    driver.take_commands();
    log.clear();
    events.clear();
  }

  void observe_output(int index) {
    interface->add_output_observer(index, [this](uint32_t id, uint32_t bits) {
      events.push_back("output " + std::to_string(id) + " bits " + std::to_string(bits));
    });
  }

  void observe_input(uint32_t id) {
    interface->add_input_observer(id, [this](uint32_t about, uint32_t bits) {
      events.push_back("input " + std::to_string(about) + " bits " + std::to_string(bits));
    });
  }

  std::set<int> blocked_inputs;
  /// What the log said each time that the mux was initialised.
  std::vector<std::vector<std::string>> told_at_mux_init;
  test_support::fake_vgn_driver_t driver;
  zyl::event_loop_t loop;
  vgn::system_t* system = nullptr;
  std::unique_ptr<interface_t> interface;
  test_support::log_capture_t log{"vgn_operatives"};
  std::vector<std::string> events;
};
