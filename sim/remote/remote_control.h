#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "zyl/property_client.h"

namespace sim {

/// Whether what was waited for came, and if not, what was seen instead.
struct [[nodiscard]] outcome_t {
  bool came = false;
  std::string seen;

  explicit operator bool() const { return came; }
};

/// How long a wait lasts that has no limit of its own: far longer than anything takes on a busy machine.
inline constexpr std::chrono::milliseconds generous_limit{30'000};

/// Steers and observes a running appliance through its property service, as people do with vgnctl: the vocabulary of
/// the demo and of the scenario tests. One thread.
class remote_control_t {
 public:
  using limit_t = std::chrono::milliseconds;
  using predicate_t = std::function<bool(const std::string& value)>;

  /// Connects to the property service of this world, which may still be starting. Throws `std::runtime_error` if there
  /// is none within the limit.
  explicit remote_control_t(limit_t limit = generous_limit);

  /// Sets a property, of the simulation or of the system.
  void set(const std::string& path, const std::string& value);

  /// The value that the property has now; empty for one that does not exist.
  std::string value(const std::string& path);

  /// Every property below `path`.
  std::map<std::string, std::string> below(const std::string& path);

  /// Waits until the property has a value that satisfies `wanted`. Values that come and go within the wait are seen
  /// too.
  outcome_t wait_property(const std::string& path, const predicate_t& wanted, limit_t limit = generous_limit);

  /// Waits until the property has this value.
  outcome_t expect_property(const std::string& path, const std::string& value, limit_t limit = generous_limit);

  /// Waits until a line with `text` is in the system's log, from its byte `from` on.
  outcome_t expect_log(const std::string& text, std::size_t from = 0, limit_t limit = generous_limit);

  /// The system's log so far.
  std::string log();

  // --- displays ---

  /// Plugs a display with this EDID, of any size, into an output, in place of one that is there.
  void plug(int output, std::span<const uint8_t> edid);
  void unplug(int output);

  /// Waits for what a person in front of the display sees, such as "splash boot_splash_screen at 1920x1080".
  outcome_t expect_shows(int output, const std::string& picture, limit_t limit = generous_limit);

  /// Waits until the driver was given a timing of this size, in pixels, for the output.
  outcome_t expect_timing(int output, uint32_t width, uint32_t height, limit_t limit = generous_limit);

  /// Waits until the engine's raw output for the display is fed by a decoder and has this size.
  outcome_t expect_raw_out(int output, uint32_t width, uint32_t height, limit_t limit = generous_limit);

  /// Waits until a decoder of the engine is configured for this URI, or none is.
  outcome_t expect_decoder(const std::string& uri, limit_t limit = generous_limit);
  outcome_t expect_no_decoder(const std::string& uri, limit_t limit = generous_limit);

  /// How often the EDID of the output's displays was read.
  int edid_reads(int output);

  // --- the other processes of the appliance ---

  /// What the runtime engine tells of itself: "Running", "Starting"; anything else is stopped.
  void design(const std::string& state);

  void start_splash();
  void stop_splash();
  void start_engine();
  void stop_engine();
  void add_streamer();
  void remove_streamer();

 private:
  using deadline_t = std::chrono::steady_clock::time_point;

  struct message_t {
    std::string command;
    std::string path;
    std::string value;

    /// Whether it is the answer to a "get" of this path.
    bool answers(const std::string& asked) const;
    /// Whether it tells a value of this path.
    bool concerns(const std::string& asked) const;
  };

  outcome_t wait_decoder(const std::string& uri, bool wanted, limit_t limit);
  std::optional<message_t> next_message(deadline_t deadline);

  zyl::property_client_t client;
  std::set<std::string> watched;
  int plugged = 0;
};

/// The property of an output of the simulation, as in "/sim/hdmi/0/timing".
std::string hdmi_path(int output, std::string_view name);

/// The picture size of a timing that the driver was given, as in "3840x2160"; empty if there was none yet.
std::string timing_size(const std::string& timing);

}  // namespace sim
