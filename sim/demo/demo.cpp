#include "sim/demo/demo.h"

#include <sys/stat.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <thread>

#include "sim/demo/teller.h"

namespace sim {
namespace {

constexpr const char* story_pipe = "/tmp/story";
constexpr const char* daemon_output = "/tmp/vgn_control.out";
constexpr std::chrono::milliseconds before_zero{1000};

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

bool is_of_daemon(const property_event_t& event, const char* verb) {
  return event.who == "vgn_control" && event.verb == verb;
}

bool reads_identity(const story_line_t& line) {
  const auto event = property_event_of(line);
  return event && is_of_daemon(*event, "reads") && event->path.starts_with("/sys/config/");
}

}  // namespace

demo_t::demo_t(const options_t& chosen)
    : options(chosen),
      narrator(made_pipe(), std::cout, options.everything, options.coloured),
      appliance({options.model, story_pipe, "/tmp/vgn-appliance.out"}) {}

bool demo_t::run() {
  std::cout << "The daemon on a simulated appliance, model " << options.model << "; times in milliseconds from "
            << zero() << "\n\n"
            << std::flush;
  std::string failure;
  try {
    play();
  } catch (const failed_t& failed) {
    failure = failed.what;
  }
  summarise(failure);
  return failure.empty();
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

void demo_t::expect_introduction() {
  require(narrator.expect_told("reads of /sys/config/...", reads_identity, 0, identity_reads), "the identity is read");
  for (const char* path : subscriptions) {
    const auto watches = [path](const story_line_t& line) {
      const auto event = property_event_of(line);
      return event && is_of_daemon(*event, "watches") && event->path == path;
    };
    require(narrator.expect_told(std::string("subscription to ") + path, watches), "the property is subscribed to");
  }
}

void demo_t::require_daemon() {
  require({daemon->process().running(), "it ended; its output is in " + std::string(daemon_output)},
          "the daemon still runs");
}

void demo_t::wait_for_zero() {
  narrator.wait_for_silence();
  const int64_t zero_us = story_time_us() + std::chrono::microseconds(before_zero).count();
  narrator.start_clock(zero_us);
  std::this_thread::sleep_for(std::chrono::microseconds(zero_us - story_time_us()));
}

void demo_t::pause(std::chrono::milliseconds time) { std::this_thread::sleep_for(time); }

void demo_t::summarise(const std::string& failure) {
  narrator.wait_for_silence();
  if (!failure.empty()) {
    narrator.start_clock_if_held(story_time_us());
  }
  print_end();
  if (failure.empty()) {
    std::cout << "All " << things_seen << " things that had to happen did.\n" << std::flush;
  } else {
    std::cout << "FAILED: this did not happen: " << failure << "\n" << std::flush;
  }
}

void demo_t::print_how_to_steer() {
  const char* enter = std::getenv("VGN_SANDBOX_ENTER");  // NOLINT(concurrency-mt-unsafe): nothing sets variables
  const std::string set = std::string(enter != nullptr ? enter : "") + (enter != nullptr ? " " : "") +
                          program_folder() + "/vgnctl property set ";
  std::cout << "The appliance stays up until Ctrl-C. From another terminal, " << invitation() << ":\n\n";
  for (const auto& [path, value] : steering()) {
    std::cout << "  " << set << path << ' ' << value << '\n';
  }
  std::cout << '\n' << std::flush;
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
