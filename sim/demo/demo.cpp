#include "sim/demo/demo.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <thread>
#include <utility>

#include "sim/model.h"
#include "sim/remote/edids.h"

namespace sim {
namespace {

constexpr int output = 0;
constexpr const char* story_pipe = "/tmp/story";
constexpr const char* daemon_output = "/tmp/vgn_control.out";
constexpr const char* published_path = "/sys/hdmi1_properties";
// Between the steps, so that a person can follow.
constexpr std::chrono::milliseconds pause{1000};

constexpr std::array<const char*, 8> subscriptions{"/tarn/design/status",      "/tarn/design/dev_options",
                                                   "/sys/runtimeengine/state", "/tarn/mode/id",
                                                   "/vgn_ui/vgn_ui_control",   "/sys/hdmi1_properties",
                                                   "/sys/hdmi2_properties",    "/vgn_control/receiving_valid_format"};
constexpr std::size_t identity_reads = 7;

std::string made_pipe() {
  if (mkfifo(story_pipe, 0600) != 0) {
    throw std::runtime_error(std::string("cannot make ") + story_pipe);
  }
  return story_pipe;
}

std::string splash_uri(int index) { return "videng-pnl8-dmabuf" + std::to_string(index); }

std::string splash_mode_path(int index) { return "/xk_splash/" + std::to_string(index) + "/mode"; }

bool is_of_daemon(const property_event_t& event, const char* verb) {
  return event.who == "vgn_control" && event.verb == verb;
}

bool reads_identity(const story_line_t& line) {
  const auto event = property_event_of(line);
  return event && is_of_daemon(*event, "reads") && event->path.starts_with("/sys/config/");
}

narrator_t::predicate_t driver_tells(const std::string& text) {
  return [text](const story_line_t& line) {
    return line.actor == "driver" && line.text.starts_with("output " + std::to_string(output) + ": " + text);
  };
}

}  // namespace

demo_t::demo_t(options_t chosen)
    : options(std::move(chosen)),
      due(due_for(options.edid)),
      splash_count(std::min(find_model(options.model)->output_count, 2)),
      output_count(find_model(options.model)->output_count),
      narrator(made_pipe(), std::cout, options.everything, options.coloured),
      appliance({options.model, story_pipe, "/tmp/vgn-appliance.out"}) {}

bool demo_t::run() {
  std::string failure;
  try {
    play();
  } catch (const failed_t& failed) {
    failure = failed.what;
  }
  summarise(failure);
  return failure.empty();
}

void demo_t::play() {
  std::cout << "The daemon on a simulated appliance, model " << options.model
            << "; times in milliseconds from the first plug\n\n"
            << std::flush;
  start_daemon();
  expect_start();
  const std::size_t log_size = remote.log().size();
  wait_for_zero();
  plug(log_size);
  std::this_thread::sleep_for(pause);
  unplug();
  std::this_thread::sleep_for(pause);
  plug(remote.log().size());
  require({daemon->process().running(), "it ended; its output is in " + std::string(daemon_output)},
          "the daemon still runs");
}

void demo_t::require(const outcome_t& outcome, const std::string& what) {
  if (outcome) {
    ++things_seen;
    return;
  }
  std::string failure = what + " (" + outcome.seen + ")";
  if (daemon && !daemon->process().running()) {
    failure += "; the daemon has ended with status " + std::to_string(*daemon->process().wait({}));
  }
  throw failed_t{failure};
}

void demo_t::start_daemon() { daemon.emplace(remote, daemon_process_t::options_t{{}, {}, daemon_output}); }

void demo_t::expect_start() {
  require(narrator.expect_told("reads of /sys/config/...", reads_identity, 0, identity_reads), "the identity is read");
  expect_subscriptions();
  require(remote.expect_property("/sim/engine/connected", "1"), "the engine is connected");
  for (int index = 0; index < splash_count; ++index) {
    require(remote.expect_property(splash_mode_path(index), "boot_splash_screen"), "the splash provider is told");
    require(remote.expect_decoder(splash_uri(index)), "the splash decoder is open");
  }
  require(remote.expect_property(published_path, "disconnected"), "the missing display is published");
}

void demo_t::expect_subscriptions() {
  for (const char* path : subscriptions) {
    const auto watches = [path](const story_line_t& line) {
      const auto event = property_event_of(line);
      return event && is_of_daemon(*event, "watches") && event->path == path;
    };
    require(narrator.expect_told(std::string("subscription to ") + path, watches), "the property is subscribed to");
  }
}

void demo_t::wait_for_zero() {
  narrator.wait_for_silence();
  const int64_t zero_us = story_time_us() + std::chrono::microseconds(pause).count();
  narrator.start_clock(zero_us);
  std::this_thread::sleep_for(std::chrono::microseconds(zero_us - story_time_us()));
}

void demo_t::plug(std::size_t log_size) {
  const int64_t since_us = story_time_us();
  remote.plug(output, options.edid);
  require(narrator.expect_told("an EDID read", driver_tells("EDID read"), since_us), "the EDID is read");
  if (due) {
    expect_mode(*due, since_us, log_size);
    expect_splash(*due);
  } else {
    expect_nothing_usable(log_size);
  }
}

void demo_t::expect_mode(const due_mode_t& wanted, int64_t since_us, std::size_t log_size) {
  require(
      remote.expect_log("set_preferred_mode hdmi_index=" + std::to_string(output) + " mode=" + wanted.mode, log_size),
      "the mode is chosen");
  require(narrator.expect_told("a timing of " + wanted.timing.text(), driver_tells("timing " + wanted.timing.text()),
                               since_us),
          "the timing is programmed");
  require(remote.expect_property(published_path, wanted.published.text()), "the size is published");
}

void demo_t::expect_splash(const due_mode_t& wanted) {
  require(remote.expect_raw_out(output, wanted.splash.width, wanted.splash.height), "the raw output is configured");
  require(remote.expect_property(hdmi_path(output, "source"), "zvid-raw-frame_inject_in_" + std::to_string(output)),
          "the route is set");
  require(remote.expect_property(splash_mode_path(output), "boot_splash_screen"), "the splash is asked for");
  require(remote.expect_shows(output, "splash boot_splash_screen at " + wanted.splash.text()), "the splash is seen");
}

void demo_t::expect_nothing_usable(std::size_t log_size) {
  require(
      remote.expect_log(
          options.edid.empty() ? "on_output_connection empty edid" : "on_output_connection empty modes list", log_size),
      "the daemon finds nothing usable");
  require(remote.expect_property(published_path, "disconnected"), "no size is published");
  require(remote.expect_shows(output, "dark"), "the display stays dark");
}

void demo_t::unplug() {
  remote.unplug(output);
  require(remote.expect_property(published_path, "disconnected"), "the unplug is published");
  require(remote.expect_property(splash_mode_path(output), "disable"), "the splash provider is told to stop");
  require(remote.expect_property("/sim/engine/raw_out/" + std::to_string(output), "-1 0 0"),
          "the raw output is cleared");
  require(remote.expect_no_decoder(splash_uri(output)), "the splash decoder is closed");
  require(remote.expect_shows(output, "nothing connected"), "nothing is seen");
}

void demo_t::summarise(const std::string& failure) {
  narrator.wait_for_silence();
  if (!failure.empty()) {
    narrator.start_clock_if_held(story_time_us());
  }
  print_shown();
  if (failure.empty()) {
    std::cout << "All " << things_seen << " things that had to happen did.\n" << std::flush;
  } else {
    std::cout << "FAILED: this did not happen: " << failure << "\n" << std::flush;
  }
}

void demo_t::print_shown() {
  std::cout << "\nThe appliance now shows\n";
  for (int n = 0; n < output_count; ++n) {
    const std::string timing = timing_size(remote.value(hdmi_path(n, "timing")));
    const bool connected = remote.value(hdmi_path(n, "connected")) == "1";
    std::cout << "  output " << n << "   " << remote.value(hdmi_path(n, "shows"));
    if (connected && !timing.empty()) {
      std::cout << ", on a display that runs " << timing;
    }
    std::cout << '\n';
  }
  std::cout << "  " << published_path << " is \"" << remote.value(published_path) << "\"\n\n";
}

void demo_t::print_how_to_steer() {
  const std::array<std::pair<const char*, edid_bytes_t>, 3> displays{{{"/tmp/uhd.edid", uhd_display_edid()},
                                                                      {"/tmp/full_hd.edid", full_hd_display_edid()},
                                                                      {"/tmp/unusable.edid", unusable_display_edid()}}};
  const char* enter = std::getenv("VGN_SANDBOX_ENTER");  // NOLINT(concurrency-mt-unsafe): nothing sets variables
  const std::string set = std::string(enter != nullptr ? enter : "") + (enter != nullptr ? " " : "") +
                          program_folder() + "/vgnctl property set ";
  std::cout << "The appliance stays up until Ctrl-C. From another terminal, plug a display, or unplug it:\n\n";
  for (const auto& [path, edid] : displays) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(edid.data()), static_cast<std::streamsize>(edid.size()));
    std::cout << "  " << set << "/sim/hdmi/0/edid " << path << '\n';
  }
  std::cout << "  " << set << "/sim/hdmi/0/edid ''\n\n" << std::flush;
}

void demo_t::keep_running() {
  sigset_t ends;
  sigemptyset(&ends);
  sigaddset(&ends, SIGINT);
  sigaddset(&ends, SIGTERM);
  print_how_to_steer();
  constexpr timespec look_at_daemon{1, 0};
  while (sigtimedwait(&ends, nullptr, &look_at_daemon) < 0 && daemon && daemon->process().running()) {
  }
}

}  // namespace sim
