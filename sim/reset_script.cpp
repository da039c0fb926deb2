#include "sim/reset_script.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <system_error>
#include <utility>

#include "sim/remote/child_process.h"
#include "sim/reset_script_paths.h"
#include "sim/unix_address.h"

namespace sim {
namespace {

constexpr const char* program_name = "vgn-reset-script";

}  // namespace

bool is_script_ending(std::string_view text) {
  constexpr std::string_view exits = "exits ";
  if (!text.starts_with(exits)) {
    return text == "dies";
  }
  const std::string_view digits = text.substr(exits.size());
  uint8_t status = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), status);
  return error == std::errc() && end == digits.data() + digits.size();
}

reset_script_t::reset_script_t(event_base* loop, property_tree_t& properties, story_t& told_story)
    : base(loop),
      tree(properties),
      story(told_story),
      listener(bind_unix_socket(SOCK_SEQPACKET, reset_script_socket)),
      connection(event_new(base, listener.get(), EV_READ | EV_PERSIST, on_connection, this)) {
  if (listen(listener.get(), SOMAXCONN) != 0) {
    throw std::system_error(errno, std::generic_category(), std::string("cannot listen on ") + reset_script_socket);
  }
  event_add(connection.get(), nullptr);
  set_script("present");
  tree.publish("/sim/reset/script", "present");
  tree.publish("/sim/reset/does", does);
  tree.publish("/sim/reset/end", "");
  tree.publish("/sim/reset/starts", "0");
  tree.publish("/sim/reset/arguments", "");
  publish_running();
  tree.on_set("/sim/reset/script", [this](const std::string& wanted) { set_script(wanted); });
  tree.on_set("/sim/reset/does", [this](const std::string& wanted) { set_behaviour(wanted); });
  tree.on_set("/sim/reset/end", [this](const std::string& ending) { end_all(ending); });
}

reset_script_t::~reset_script_t() { unlink(reset_script_path); }

void reset_script_t::set_script(const std::string& wanted) {
  if (wanted != "present" && wanted != "missing") {
    story.tell("reset", "script cannot be \"", {wanted, "\""});
    tree.publish("/sim/reset/script", std::filesystem::exists(reset_script_path) ? "present" : "missing");
    return;
  }
  const std::filesystem::path script(reset_script_path);
  std::filesystem::create_directories(script.parent_path());
  std::filesystem::remove(script);
  if (wanted == "present") {
    std::filesystem::create_symlink(program_folder() + "/" + program_name, script);
  }
}

void reset_script_t::set_behaviour(const std::string& wanted) {
  if (wanted != "runs" && !is_script_ending(wanted)) {
    story.tell("reset", "script cannot \"", {wanted, "\""});
    tree.publish("/sim/reset/does", does);
    return;
  }
  does = wanted;
}

void reset_script_t::end_all(const std::string& ending) {
  if (!is_script_ending(ending)) {
    story.tell("reset", "script cannot end by \"", {ending, "\""});
    return;
  }
  for (const auto& run : runs) {
    end(*run, ending);
  }
}

void reset_script_t::on_connection(evutil_socket_t /*fd*/, short /*events*/, void* self) {
  static_cast<reset_script_t*>(self)->accept_run();
}

void reset_script_t::accept_run() {
  descriptor_t socket(accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
  if (!socket) {
    return;
  }
  auto run = std::make_unique<run_t>();
  run->owner = this;
  run->socket = std::move(socket);
  run->readable.reset(event_new(base, run->socket.get(), EV_READ | EV_PERSIST, on_readable, run.get()));
  event_add(run->readable.get(), nullptr);
  runs.push_back(std::move(run));
}

void reset_script_t::on_readable(evutil_socket_t /*fd*/, short /*events*/, void* run) {
  auto& heard = *static_cast<run_t*>(run);
  heard.owner->hear(heard);
}

void reset_script_t::hear(run_t& run) {
  std::array<char, 4096> packet{};
  const ssize_t size = recv(run.socket.get(), packet.data(), packet.size(), MSG_DONTWAIT);
  if (size > 0) {
    note_start(run, {packet.data(), static_cast<std::size_t>(size)});
  } else if (size == 0 || errno != EAGAIN) {
    note_end(run);
  }
}

// The program ends its arguments with a newline, so that there is a packet without any, too.
void reset_script_t::note_start(run_t& run, std::string_view arguments) {
  arguments = arguments.substr(0, arguments.find('\n'));
  run.has_started = true;
  story.tell("reset", arguments.empty() ? "script started" : "script started with ", {arguments});
  tree.publish("/sim/reset/arguments", arguments);
  publish_running();
  tree.publish("/sim/reset/starts", std::to_string(++starts));
  if (does != "runs") {
    end(run, does);
  }
}

void reset_script_t::end(const run_t& run, const std::string& ending) {
  story.tell("reset", "script ", {ending});
  static_cast<void>(send(run.socket.get(), ending.data(), ending.size(), MSG_NOSIGNAL));
}

void reset_script_t::note_end(const run_t& run) {
  std::erase_if(runs, [&run](const auto& known) { return known.get() == &run; });
  story.tell("reset", "script is gone");
  publish_running();
}

void reset_script_t::publish_running() {
  const bool running = std::any_of(runs.begin(), runs.end(), [](const auto& run) { return run->has_started; });
  tree.publish("/sim/reset/running", running ? "1" : "0");
}

}  // namespace sim
