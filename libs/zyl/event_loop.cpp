#include "zyl/event_loop.h"

#include <event2/dns.h>
#include <event2/thread.h>

#include <cstdlib>
#include <memory>
#include <mutex>
#include <new>

#include "zyl/exceptions.h"
#include "zyl/log/module_logger.h"
#include "zyl/post.h"

static auto& module_log = zyl::module_logger("zyl_event");
#include "zyl/log/log_bind.h"

namespace zyl {
namespace {

void log_libevent_message(int severity, const char* text) {
  switch (severity) {
    case EVENT_LOG_DEBUG:
      log_debug_s() << text;
      break;
    case EVENT_LOG_MSG:
      log_info_s() << text;
      break;
    case EVENT_LOG_WARN:
      log_warn_s() << text;
      break;
    default:
      log_error_s() << text;
      break;
  }
}

void end_process_on_libevent_fatal(int code) {
  log_error_s() << "FATAL : " << code;
  std::exit(code);  // NOLINT(concurrency-mt-unsafe): libevent cannot go on
}

void set_libevent_up() {
  evthread_use_pthreads();
  event_set_log_callback(log_libevent_message);
  event_set_fatal_callback(end_process_on_libevent_fatal);
}

}  // namespace

event_base* new_event_base() {
  static std::once_flag once;
  std::call_once(once, set_libevent_up);
  const std::unique_ptr<event_config, decltype(&event_config_free)> config(event_config_new(), event_config_free);
  if (!config) {
    throw std::bad_alloc();
  }
  event_config_set_flag(config.get(), EVENT_BASE_FLAG_PRECISE_TIMER);
  event_base* const base = event_base_new_with_config(config.get());
  return base != nullptr ? base : throw exception_t("no event base");
}

event_loop_t::event_loop_t() : loop_base(new_event_base()), resolver(evdns_base_new(loop_base, 1)) {}

event_loop_t::~event_loop_t() {
  event_loop_t::stop();
  if (resolver != nullptr) {
    evdns_base_free(resolver, 0);
  }
  drop_posts(loop_base);
  event_base_free(loop_base);
}

void event_loop_t::run() { try_run(); }

bool event_loop_t::try_run() {
  const int result = event_base_loop(loop_base, EVLOOP_NO_EXIT_ON_EMPTY);
  if (result < 0) {
    log_error_s() << "event loop failed: " << result;
  }
  return result >= 0;
}

void event_loop_t::stop() { event_base_loopexit(loop_base, nullptr); }

}  // namespace zyl
