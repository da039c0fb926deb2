#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sim/demo/due.h"
#include "sim/demo/narrator.h"
#include "sim/remote/appliance_process.h"
#include "sim/remote/remote_control.h"

namespace sim {

/// The demo: runs the unmodified daemon on a simulated appliance, plugs a display, unplugs it and plugs it again, and
/// judges from outside whether the daemon did what is due.
class demo_t {
 public:
  struct options_t {
    int model = 106;
    std::vector<uint8_t> edid;
    bool everything = false;
    bool coloured = false;
  };

  /// Starts the appliance. Throws `std::runtime_error` if it cannot.
  explicit demo_t(options_t options);

  /// Ends daemon and appliance, of which nothing is told.
  ~demo_t() { narrator.fall_silent(); }

  demo_t(const demo_t&) = delete;
  demo_t& operator=(const demo_t&) = delete;
  demo_t(demo_t&&) = delete;
  demo_t& operator=(demo_t&&) = delete;

  /// Tells the story and its summary on standard output. Whether all came that had to.
  bool run();

  /// Goes on telling, after how to steer the appliance, until SIGTERM, SIGINT or the end of the daemon.
  void keep_running();

 private:
  /// Thrown when something did not come: what follows from it would not come either.
  struct failed_t {
    std::string what;
  };

  void play();
  void start_daemon();
  void expect_start();
  void expect_subscriptions();
  void wait_for_zero();
  void plug(std::size_t log_size);
  void expect_mode(const due_mode_t& due, int64_t since_us, std::size_t log_size);
  void expect_splash(const due_mode_t& due);
  void expect_nothing_usable(std::size_t log_size);
  void unplug();
  void require(const outcome_t& outcome, const std::string& what);
  void summarise(const std::string& failure);
  void print_shown();
  void print_how_to_steer();

  options_t options;
  std::optional<due_mode_t> due;
  int splash_count;
  int output_count;
  int things_seen = 0;
  narrator_t narrator;
  appliance_process_t appliance;
  remote_control_t remote;
  std::optional<daemon_process_t> daemon;
};

}  // namespace sim
