#include "tools/vgnctl/property/property_session.h"

#include <utility>

#include "zyl/clock.h"
#include "zyl/exceptions.h"

namespace vgnctl {
namespace {

constexpr int64_t answer_limit_ms = 1000;
/// How long a service that is giving out a list may be silent before that counts as the end of the list.
constexpr int64_t silence_limit_ms = 500;
constexpr int without_limit = -1;

[[noreturn]] void fail_unanswered(const std::string& about) {
  throw zyl::exception_t("the property service gave no answer for " + about);
}

[[noreturn]] void fail_gone() { throw zyl::exception_t("the property service has gone"); }

}  // namespace

property_session_t::property_session_t() {
  if (!client.connect()) {
    throw zyl::exception_t(std::string("no property service at ") + zyl::property_service_path);
  }
}

std::optional<std::string> property_session_t::get(const std::string& path) {
  client.get(path);
  const int64_t deadline = zyl::now_ms() + answer_limit_ms;
  while (auto message = next_message(deadline - zyl::now_ms())) {
    if (message->tells_value_of(path)) {
      return std::move(message->value);
    }
    if (message->tells_no_property()) {
      return std::nullopt;
    }
  }
  fail_unanswered(path);
}

void property_session_t::set(const std::string& path, const std::string& value) {
  client.set(path, value);
  require(path);
}

void property_session_t::create(const std::string& path) {
  client.create(path);
  require(path);
}

void property_session_t::list(const std::string& path, const property_handler_t& on_property) {
  client.list(path);
  collect(path, on_property);
}

void property_session_t::dump(const property_handler_t& on_property) {
  client.get_all();
  collect("/", on_property);
}

void property_session_t::monitor(const std::vector<std::string>& paths, const property_handler_t& on_change,
                                 const std::function<void()>& on_unknown) {
  for (const std::string& path : paths) {
    if (!client.monitor(path)) {
      fail_unanswered(path);
    }
  }
  message_t message;
  while (!client.hung_up()) {
    if (!client.receive(message.command, message.path, message.value, without_limit)) {
      continue;
    }
    if (message.command == "changed") {
      on_change(message.path, message.value);
    } else if (message.tells_no_property()) {
      on_unknown();
    }
  }
  fail_gone();
}

/// The next message of the service; nothing when the limit is over.
std::optional<property_session_t::message_t> property_session_t::next_message(int64_t limit_ms) {
  const int64_t deadline = zyl::now_ms() + limit_ms;
  for (int64_t left_ms = limit_ms; left_ms > 0; left_ms = deadline - zyl::now_ms()) {
    message_t message;
    if (client.receive(message.command, message.path, message.value, static_cast<int>(left_ms))) {
      return message;
    }
    if (client.hung_up()) {
      fail_gone();
    }
  }
  return std::nullopt;
}

// "set" and "create" have no answer of their own. Once a later request is answered, the service has done this one too.
void property_session_t::require(const std::string& path) {
  if (!get(path)) {
    throw zyl::exception_t("the property service does not take " + path);
  }
}

// A list ends with an entry of empty path, or with silence on services that send none. Before silence is believed, the
// service is asked for one property more: requests are answered in order, so a slow one then still gives the rest, and
// one that hangs shows.
void property_session_t::collect(const std::string& about, const property_handler_t& on_property) {
  bool any = false;
  const auto take = [&](const std::string& path, const std::string& value) {
    any = true;
    on_property(path, value);
  };
  if (take_properties("", take)) {
    return;
  }
  client.get(about);
  if (!take_properties(about, take) && !any) {
    fail_unanswered(about);
  }
}

/// Hands over what the service lists. False if it fell silent before an entry of empty path, and before the answer for
/// `asked_again` if that is not empty.
bool property_session_t::take_properties(const std::string& asked_again, const property_handler_t& on_property) {
  while (const auto message = next_message(silence_limit_ms)) {
    const bool is_answer = message->tells_value_of(asked_again) || message->tells_no_property();
    if (message->tells_value_of("") || (is_answer && !asked_again.empty())) {
      return true;
    }
    if (message->command == "get_response") {
      on_property(message->path, message->value);
    }
  }
  return false;
}

}  // namespace vgnctl
