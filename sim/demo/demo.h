#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "sim/demo/narrator.h"
#include "sim/remote/appliance_process.h"
#include "sim/remote/remote_control.h"

namespace sim {

/// What every demo has: the unmodified daemon on a simulated appliance, the story of the run on the terminal, and a
/// judgement from outside whether the daemon does what is due. A play says what happens to the appliance.
class demo_t {
 public:
  struct options_t {
    int model = 106;
    bool everything = false;
    bool coloured = false;
  };

  /// Starts the appliance. Throws `std::runtime_error` if it cannot.
  explicit demo_t(const options_t& options);

  /// Ends daemon and appliance, of which nothing is told.
  virtual ~demo_t() { narrator.fall_silent(); }

  demo_t(const demo_t&) = delete;
  demo_t& operator=(const demo_t&) = delete;
  demo_t(demo_t&&) = delete;
  demo_t& operator=(demo_t&&) = delete;

  /// Tells the story and its summary on standard output. Whether all came that had to.
  bool run();

  /// Goes on telling, after how to steer the appliance, until SIGTERM, SIGINT or the end of the daemon.
  void keep_running();

 protected:
  /// A property to set from another terminal, and its value as a shell wants it.
  using steering_t = std::vector<std::pair<std::string, std::string>>;

  /// What the times of the story are relative to.
  virtual std::string zero() const = 0;
  /// All that happens from the start of the daemon on.
  virtual void play() = 0;
  /// Prints the end of the story in a few lines.
  virtual void print_end() = 0;
  /// What a person can do to the appliance, and what that is in words.
  virtual std::string invitation() const = 0;
  virtual steering_t steering() = 0;

  /// Ends the play if it did not come: what follows from it would not come either.
  void require(const outcome_t& outcome, const std::string& what);

  void start_daemon();
  /// That the daemon has read the identity and subscribed to what it watches.
  void expect_introduction();
  void require_daemon();

  /// Starts the clock of the story a moment from now, and waits for it.
  void wait_for_zero();
  /// Lets a person follow.
  static void pause(std::chrono::milliseconds time = std::chrono::milliseconds(1000));

  options_t options;
  narrator_t narrator;
  appliance_process_t appliance;
  remote_control_t remote;

 private:
  struct failed_t {
    std::string what;
  };

  void summarise(const std::string& failure);
  void print_how_to_steer();

  int things_seen = 0;
  std::optional<daemon_process_t> daemon;
};

}  // namespace sim
