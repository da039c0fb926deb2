#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "sim/remote/appliance_process.h"
#include "sim/remote/edids.h"
#include "sim/remote/remote_control.h"

namespace scenarios {

/// The unmodified daemon on a simulated appliance of its own. A test says what happens to the appliance and what it
/// expects to see there; the daemon is looked at from outside only.
///
/// At the end of each test the daemon must still run, and a sanitizer that it was built with, the leak check included,
/// must have nothing to tell.
class DaemonScenario : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  /// Makes the appliance of `SetUp` another one.
  virtual sim::appliance_process_t::options_t appliance_options() const { return {}; }

  /// Starts the daemon and goes on at once.
  void launch_daemon(const std::map<std::string, std::string>& environment = {},
                     const std::vector<std::string>& arguments = {});

  /// Starts the daemon and waits until the engine, the driver and the splash provider have heard from it.
  void start_daemon();

  /// Sends the daemon a fatal signal and returns its exit status, as a shell tells it. There is none from then on.
  int crash_daemon(int signal);

  void expect_property(const std::string& path, const std::string& value);

  /// Waits until a line with `text` is in the system's log.
  void expect_told(const std::string& text);

  /// Waits until the splash decoder of each output is configured.
  void expect_splash_ready();

  /// What a display in use shows while no design runs.
  void expect_splash(int output);
  void expect_dark(int output);
  void expect_disconnected(int output);

  /// The size that the coordinator publishes for an output.
  void expect_published(int output, const std::string& size);

  sim::remote_control_t& remote() { return *control; }
  sim::child_process_t& daemon() { return running_daemon->process(); }

 private:
  std::unique_ptr<sim::appliance_process_t> appliance;
  std::unique_ptr<sim::remote_control_t> control;
  std::unique_ptr<sim::daemon_process_t> running_daemon;
};

/// The property by which the coordinator tells the size of an output.
std::string published_path(int output);

/// The property by which the splash provider of an output is told what to draw.
std::string splash_mode_path(int output);

}  // namespace scenarios
