#include "tools/vgnctl/property/property_session.h"

#include <utility>

#include "zyl/clock.h"
#include "zyl/exceptions.h"

namespace vgnctl {
namespace {

constexpr int64_t answer_limit_ms = 1000;
/// Silence that ends a list whose service sends no end of it.
constexpr int64_t silence_limit_ms = 500;
constexpr int without_limit = -1;

[[noreturn]] void fail_unanswered(const std::string& about) {
  throw zyl::exception_t("the property service gave no answer for " + about);
}

[[noreturn]] void fail_unsent() { throw zyl::exception_t("the property service takes no request"); }

[[noreturn]] void fail_gone() { throw zyl::exception_t("the property service has gone"); }

}  // namespace

property_session_t::property_session_t() {
  if (!client.connect()) {
    throw zyl::exception_t(std::string("no property service at ") + zyl::property_service_path);
  }
}

std::optional<std::string> property_session_t::get(const std::string& path) {
  require_sent(client.get(path));
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
  require_sent(client.set(path, value));
  require(path);
}

void property_session_t::create(const std::string& path) {
  require_sent(client.create(path));
  require(path);
}

void property_session_t::list(const std::string& path, const property_handler_t& on_property) {
  require_sent(client.list(path));
  collect(on_property);
}

void property_session_t::dump(const property_handler_t& on_property) {
  require_sent(client.get_all());
  collect(on_property);
}

void property_session_t::monitor(const std::vector<std::string>& paths, const property_handler_t& on_change,
                                 const std::function<void()>& on_unknown) {
  for (const std::string& path : paths) {
    require_sent(client.monitor(path));
  }
  message_t message;
  for (;;) {
    // Messages that came before the service went are there to be told.
    if (!client.receive(message.command, message.path, message.value, without_limit)) {
      if (client.hung_up()) {
        fail_gone();
      }
      continue;
    }
    if (message.command == "changed") {
      on_change(message.path, message.value);
    } else if (message.tells_no_property()) {
      on_unknown();
    }
  }
}

void property_session_t::require_sent(bool sent) const {
  if (!sent) {
    client.hung_up() ? fail_gone() : fail_unsent();
  }
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

void property_session_t::collect(const property_handler_t& on_property) {
  int64_t deadline = zyl::now_ms() + silence_limit_ms;
  while (const auto message = next_message(deadline - zyl::now_ms())) {
    if (message->tells_value_of("")) {
      return;
    }
    if (message->command == "get_response") {
      on_property(message->path, message->value);
      deadline = zyl::now_ms() + silence_limit_ms;
    }
  }
}

}  // namespace vgnctl
