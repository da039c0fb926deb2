#include "sim/demo/display_demo.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iostream>
#include <utility>

#include "sim/demo/teller.h"
#include "sim/model.h"
#include "sim/remote/edids.h"

namespace sim {
namespace {

constexpr int output = 0;
constexpr const char* published_path = "/sys/hdmi1_properties";

std::string splash_uri(int index) { return "videng-pnl8-dmabuf" + std::to_string(index); }

std::string splash_mode_path(int index) { return "/xk_splash/" + std::to_string(index) + "/mode"; }

narrator_t::predicate_t driver_tells(const std::string& text) {
  return [text](const story_line_t& line) {
    return line.actor == "driver" && line.text.starts_with("output " + std::to_string(output) + ": " + text);
  };
}

}  // namespace

display_demo_t::display_demo_t(const options_t& chosen, std::vector<uint8_t> display_edid)
    : demo_t(chosen),
      edid(std::move(display_edid)),
      due(due_for(edid)),
      splash_count(std::min(find_model(chosen.model)->output_count, 2)),
      output_count(find_model(chosen.model)->output_count) {}

void display_demo_t::play() {
  start_daemon();
  expect_start();
  const std::size_t log_size = remote.log().size();
  wait_for_zero();
  plug(log_size);
  pause();
  unplug();
  pause();
  plug(remote.log().size());
  require_daemon();
}

void display_demo_t::expect_start() {
  expect_introduction();
  require(remote.expect_property("/sim/engine/connected", "1"), "the engine is connected");
  for (int index = 0; index < splash_count; ++index) {
    require(remote.expect_property(splash_mode_path(index), "boot_splash_screen"), "the splash provider is told");
    require(remote.expect_decoder(splash_uri(index)), "the splash decoder is open");
  }
  require(remote.expect_property(published_path, "disconnected"), "the missing display is published");
}

void display_demo_t::plug(std::size_t log_size) {
  const int64_t since_us = story_time_us();
  remote.plug(output, edid);
  require(narrator.expect_told("an EDID read", driver_tells("EDID read"), since_us), "the EDID is read");
  if (due) {
    expect_mode(*due, since_us, log_size);
    expect_splash(*due);
  } else {
    expect_nothing_usable(log_size);
  }
}

void display_demo_t::expect_mode(const due_mode_t& wanted, int64_t since_us, std::size_t log_size) {
  require(
      remote.expect_log("set_preferred_mode hdmi_index=" + std::to_string(output) + " mode=" + wanted.mode, log_size),
      "the mode is chosen");
  require(narrator.expect_told("a timing of " + wanted.timing.text(), driver_tells("timing " + wanted.timing.text()),
                               since_us),
          "the timing is programmed");
  require(remote.expect_property(published_path, wanted.published.text()), "the size is published");
}

void display_demo_t::expect_splash(const due_mode_t& wanted) {
  require(remote.expect_raw_out(output, wanted.splash.width, wanted.splash.height), "the raw output is configured");
  require(remote.expect_property(hdmi_path(output, "source"), "zvid-raw-frame_inject_in_" + std::to_string(output)),
          "the route is set");
  require(remote.expect_property(splash_mode_path(output), "boot_splash_screen"), "the splash is asked for");
  require(remote.expect_shows(output, "splash boot_splash_screen at " + wanted.splash.text()), "the splash is seen");
}

void display_demo_t::expect_nothing_usable(std::size_t log_size) {
  require(remote.expect_log(edid.empty() ? "on_output_connection empty edid" : "on_output_connection empty modes list",
                            log_size),
          "the daemon finds nothing usable");
  require(remote.expect_property(published_path, "disconnected"), "no size is published");
  require(remote.expect_shows(output, "dark"), "the display stays dark");
}

void display_demo_t::unplug() {
  remote.unplug(output);
  require(remote.expect_property(published_path, "disconnected"), "the unplug is published");
  require(remote.expect_property(splash_mode_path(output), "disable"), "the splash provider is told to stop");
  require(remote.expect_property("/sim/engine/raw_out/" + std::to_string(output), "-1 0 0"),
          "the raw output is cleared");
  require(remote.expect_no_decoder(splash_uri(output)), "the splash decoder is closed");
  require(remote.expect_shows(output, "nothing connected"), "nothing is seen");
}

void display_demo_t::print_end() {
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

demo_t::steering_t display_demo_t::steering() {
  const std::array<std::pair<const char*, edid_bytes_t>, 3> displays{{{"/tmp/uhd.edid", uhd_display_edid()},
                                                                      {"/tmp/full_hd.edid", full_hd_display_edid()},
                                                                      {"/tmp/unusable.edid", unusable_display_edid()}}};
  steering_t steps;
  for (const auto& [path, bytes] : displays) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    steps.emplace_back(hdmi_path(output, "edid"), path);
  }
  steps.emplace_back(hdmi_path(output, "edid"), "''");
  return steps;
}

}  // namespace sim
