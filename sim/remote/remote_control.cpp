#include "sim/remote/remote_control.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <utility>

namespace sim {
namespace {

using steady_t = std::chrono::steady_clock;

std::chrono::milliseconds left_until(steady_t::time_point deadline) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - steady_t::now());
  return std::max(left, std::chrono::milliseconds(0));
}

std::string quoted(const std::string& value) { return '"' + value + '"'; }

std::string text_of(const std::string& path) {
  std::ifstream file(path);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

}  // namespace

std::string hdmi_path(int output, std::string_view name) {
  return "/sim/hdmi/" + std::to_string(output) + "/" + std::string(name);
}

std::string timing_size(const std::string& timing) {
  std::istringstream fields(timing);
  std::array<uint32_t, 10> numbers{};
  for (auto& number : numbers) {
    fields >> number;
  }
  return fields ? std::to_string(numbers[1]) + "x" + std::to_string(numbers[5]) : "";
}

remote_control_t::remote_control_t(limit_t limit) {
  const auto deadline = steady_t::now() + limit;
  while (!client.connect()) {
    if (steady_t::now() >= deadline) {
      throw std::runtime_error("there is no property service");
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  if (const auto ready = expect_property("/sim/ready", "1", left_until(deadline)); !ready) {
    throw std::runtime_error("the appliance is not ready: " + ready.seen);
  }
}

void remote_control_t::set(const std::string& path, const std::string& value) {
  if (!client.set(path, value)) {
    throw std::runtime_error("cannot set " + path);
  }
}

std::string remote_control_t::value(const std::string& path) {
  std::string last;
  static_cast<void>(wait_property(path, [&last](const std::string& value) {
    last = value;
    return true;
  }));
  return last;
}

std::map<std::string, std::string> remote_control_t::below(const std::string& path) {
  std::map<std::string, std::string> found;
  client.list(path);
  const auto deadline = steady_t::now() + generous_limit;
  while (auto message = next_message(deadline)) {
    if (message->command != "get_response") {
      continue;
    }
    if (message->path.empty()) {
      break;
    }
    found[message->path] = message->value;
  }
  return found;
}

// The service answers in order, so what comes before the answer to our own "get" is older than this wait.
outcome_t remote_control_t::wait_property(const std::string& path, const predicate_t& wanted, limit_t limit) {
  const auto deadline = steady_t::now() + limit;
  if (watched.insert(path).second) {
    client.monitor(path);
  }
  client.get(path);
  bool answered = false;
  std::string last;
  while (const auto message = next_message(deadline)) {
    answered = answered || message->answers(path);
    if (!answered || !message->concerns(path)) {
      continue;
    }
    last = message->command == "error" ? "" : message->value;
    if (wanted(last)) {
      return {true, path + " is " + quoted(last)};
    }
  }
  const std::string state = client.hung_up() ? "the property service is gone; " : "";
  return {false, state + path + (answered ? " is " + quoted(last) : " was not answered") + " after " +
                     std::to_string(limit.count()) + " ms"};
}

bool remote_control_t::message_t::answers(const std::string& asked) const {
  return (command == "get_response" && path == asked) || (command == "error" && value == asked);
}

bool remote_control_t::message_t::concerns(const std::string& asked) const {
  return answers(asked) || (command == "changed" && path == asked);
}

std::optional<remote_control_t::message_t> remote_control_t::next_message(deadline_t deadline) {
  message_t message;
  do {
    if (client.receive(message.command, message.path, message.value, static_cast<int>(left_until(deadline).count()))) {
      return message;
    }
  } while (!client.hung_up() && steady_t::now() < deadline);
  return std::nullopt;
}

outcome_t remote_control_t::expect_property(const std::string& path, const std::string& value, limit_t limit) {
  outcome_t outcome = wait_property(
      path, [&value](const std::string& found) { return found == value; }, limit);
  if (!outcome) {
    outcome.seen += ", not " + quoted(value);
  }
  return outcome;
}

std::string remote_control_t::log() { return text_of(value("/sim/log/file")); }

outcome_t remote_control_t::expect_log(const std::string& text, std::size_t from, limit_t limit) {
  const std::string file = value("/sim/log/file");
  outcome_t outcome = wait_property(
      "/sim/log/last", [&](const std::string&) { return text_of(file).find(text, from) != std::string::npos; }, limit);
  if (!outcome) {
    outcome.seen = quoted(text) + " is not in " + file + "; " + outcome.seen;
  }
  return outcome;
}

void remote_control_t::plug(int output, std::span<const uint8_t> edid) {
  const std::string path = "/tmp/plugged_" + std::to_string(getpid()) + "_" + std::to_string(++plugged) + ".edid";
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(edid.data()), static_cast<std::streamsize>(edid.size()));
  file.close();
  if (!file) {
    throw std::runtime_error("cannot write " + path);
  }
  set(hdmi_path(output, "edid"), path);
}

void remote_control_t::unplug(int output) { set(hdmi_path(output, "edid"), ""); }

outcome_t remote_control_t::expect_shows(int output, const std::string& picture, limit_t limit) {
  return expect_property(hdmi_path(output, "shows"), picture, limit);
}

outcome_t remote_control_t::expect_timing(int output, uint32_t width, uint32_t height, limit_t limit) {
  const std::string size = std::to_string(width) + "x" + std::to_string(height);
  outcome_t outcome = wait_property(
      hdmi_path(output, "timing"), [&size](const std::string& timing) { return timing_size(timing) == size; }, limit);
  if (!outcome) {
    outcome.seen += ", not of size " + size;
  }
  return outcome;
}

outcome_t remote_control_t::expect_raw_out(int output, uint32_t width, uint32_t height, limit_t limit) {
  const std::string size = std::to_string(width) + " " + std::to_string(height);
  const auto fed = [&size](const std::string& raw_out) {
    return !raw_out.starts_with('-') && raw_out.ends_with(" " + size);
  };
  outcome_t outcome = wait_property("/sim/engine/raw_out/" + std::to_string(output), fed, limit);
  if (!outcome) {
    outcome.seen += ", not a decoder and " + size;
  }
  return outcome;
}

outcome_t remote_control_t::expect_decoder(const std::string& uri, limit_t limit) {
  return wait_decoder(uri, true, limit);
}

outcome_t remote_control_t::expect_no_decoder(const std::string& uri, limit_t limit) {
  return wait_decoder(uri, false, limit);
}

// Which of the decoders serves a URI is the client's choice, so all of them are looked at whenever one changes.
outcome_t remote_control_t::wait_decoder(const std::string& uri, bool wanted, limit_t limit) {
  const std::string folder = "/sim/engine/decoder";
  const auto deadline = steady_t::now() + limit;
  for (const auto& [path, value] : below(folder)) {
    if (watched.insert(path).second) {
      client.monitor(path);
    }
  }
  for (;;) {
    const auto decoders = below(folder);
    const auto serving =
        std::find_if(decoders.begin(), decoders.end(), [&uri](const auto& decoder) { return decoder.second == uri; });
    if ((serving != decoders.end()) == wanted) {
      return {true, wanted ? serving->first + " plays " + uri : "no decoder plays " + uri};
    }
    if (!next_message(deadline)) {
      return {false, (wanted ? "no decoder plays " : "a decoder still plays ") + uri + " after " +
                         std::to_string(limit.count()) + " ms"};
    }
  }
}

int remote_control_t::edid_reads(int output) {
  const std::string count = value(hdmi_path(output, "edid_reads"));
  return count.empty() ? 0 : std::stoi(count);
}

void remote_control_t::design(const std::string& state) { set("/sys/runtimeengine/state", state); }

void remote_control_t::start_splash() { set("/sim/splash/running", "1"); }
void remote_control_t::stop_splash() { set("/sim/splash/running", "0"); }
void remote_control_t::start_engine() { set("/sim/engine/running", "1"); }
void remote_control_t::stop_engine() { set("/sim/engine/running", "0"); }
void remote_control_t::add_streamer() { set("/sim/streamer/present", "1"); }
void remote_control_t::remove_streamer() { set("/sim/streamer/present", "0"); }

}  // namespace sim
