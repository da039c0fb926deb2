#include "zyl/curl/curl_manager.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>
#include <utility>

#include "zyl/log/module_logger.h"
#include "zyl/post.h"

static auto& module_log = zyl::module_logger("zyl_curl");
#include "zyl/log/log_bind.h"

namespace zyl::curl {
namespace {

void log_failure(const char* call, const char* text, int line) {
  log_error_s() << "  [" << gettid() << "]: [curl/curl_manager:" << line << "] ERROR : " << call << " returns " << text;
}

// The line of the failing call, like the call itself, is the caller's.
void check(CURLMcode code, const char* call, int line = __builtin_LINE()) {
  if (code != CURLM_OK) {
    log_failure(call, curl_multi_strerror(code), line);
  }
}

void check(CURLcode code, const char* call, int line = __builtin_LINE()) {
  if (code != CURLE_OK) {
    log_failure(call, curl_easy_strerror(code), line);
  }
}

// What libcurl wants of a descriptor, and what happened to it, in libevent's flags: theirs are one bit to the left.
constexpr int direction_mask = CURL_POLL_INOUT;
static_assert(CURL_POLL_IN << 1 == EV_READ && CURL_POLL_OUT << 1 == EV_WRITE);
static_assert(EV_READ >> 1 == CURL_CSELECT_IN && EV_WRITE >> 1 == CURL_CSELECT_OUT);

short events_of(int action) { return static_cast<short>(((action & direction_mask) << 1) | EV_PERSIST); }

int action_of(short events) { return (events >> 1) & direction_mask; }

}  // namespace

manager_t::manager_t(event_base* loop_base)
    : timer(event_new(loop_base, -1, 0, on_timer, this)), base(loop_base), self(std::make_shared<manager_t*>(this)) {
  if (!timer) {
    throw std::bad_alloc();
  }
  set_libcurl_up();
  multi.reset(curl_multi_init());
  if (!multi) {
    throw_init_failure(CURLE_FAILED_INIT);
  }
  check(curl_multi_setopt(multi.get(), CURLMOPT_SOCKETFUNCTION, on_socket_wanted), "curl_multi_setopt");
  check(curl_multi_setopt(multi.get(), CURLMOPT_SOCKETDATA, this), "curl_multi_setopt");
  check(curl_multi_setopt(multi.get(), CURLMOPT_TIMERFUNCTION, on_timer_wanted), "curl_multi_setopt");
  check(curl_multi_setopt(multi.get(), CURLMOPT_TIMERDATA, this), "curl_multi_setopt");
}

manager_t::~manager_t() {
  for (const auto& [easy, entry] : live) {
    check(curl_multi_remove_handle(multi.get(), easy), "remove::curl_multi_remove_handle");
  }
}

transfer_t manager_t::add(std::unique_ptr<request_t> request) {
  const transfer_t transfer{request->easy(), ++last_serial};
  // A posted call can be copied, so what it carries must be shared.
  auto parcel = std::make_shared<std::unique_ptr<request_t>>(std::move(request));
  post_to_self([parcel = std::move(parcel), serial = transfer.serial](manager_t& manager) {
    manager.start(std::move(*parcel), serial);
  });
  return transfer;
}

void manager_t::remove(const transfer_t& transfer) {
  post_to_self([transfer](manager_t& manager) { manager.end(transfer); });
}

template <typename Call>
void manager_t::post_to_self(Call call) {
  post(base, [weak = std::weak_ptr(self), call = std::move(call)] {
    if (const auto manager = weak.lock()) {
      call(**manager);
    }
  });
}

void manager_t::start(std::unique_ptr<request_t> request, uint64_t serial) {
  if (given_up) {
    request->completed(CURLE_ABORTED_BY_CALLBACK);
    request->finish();
    return;
  }
  CURL* const easy = request->easy();
  live.emplace(easy, live_request_t{std::move(request), serial});
  check(curl_multi_add_handle(multi.get(), easy), "add::curl_multi_add_handle");
}

void manager_t::end(const transfer_t& transfer) {
  const auto entry = live.find(transfer.easy);
  if (entry == live.end() || entry->second.serial != transfer.serial) {
    return;
  }
  check(curl_multi_remove_handle(multi.get(), transfer.easy), "remove::curl_multi_remove_handle");
  const auto removed = live.extract(entry);
}

int manager_t::on_socket_wanted(CURL* easy, curl_socket_t fd, int action, void* self, void* record) {
  auto& manager = *static_cast<manager_t*>(self);
  if (action == CURL_POLL_REMOVE) {
    manager.sockets.erase(fd);
    return 0;
  }
  auto& wanted = record != nullptr ? *static_cast<socket_record_t*>(record) : manager.make_record(fd);
  wanted.easy = easy;
  wanted.action = action;
  if (!manager.watch(wanted)) {
    log_failure("sock_cb - event_new", std::strerror(ENOMEM), __LINE__);
    manager.given_up = true;
    return -1;
  }
  if (record == nullptr) {
    check(curl_multi_assign(manager.multi.get(), fd, &wanted), "sock_cb - curl_multi_assign");
  }
  return 0;
}

/// A descriptor whose record libcurl could not keep has one already, which goes.
manager_t::socket_record_t& manager_t::make_record(curl_socket_t fd) {
  sockets.erase(fd);
  return sockets.emplace(fd, socket_record_t{fd, nullptr, CURL_POLL_NONE, nullptr, *this}).first->second;
}

bool manager_t::watch(socket_record_t& record) {
  record.watcher.reset();
  record.watcher.reset(event_new(base, record.fd, events_of(record.action), on_socket_event, &record));
  return record.watcher && event_add(record.watcher.get(), nullptr) == 0;
}

int manager_t::on_timer_wanted(CURLM* /*multi*/, long timeout_ms, void* self) {
  event* const timer = static_cast<manager_t*>(self)->timer.get();
  if (timeout_ms >= 0) {
    const timeval timeout{timeout_ms / 1000, timeout_ms % 1000 * 1000};
    event_add(timer, &timeout);
  } else if (event_pending(timer, EV_TIMEOUT, nullptr) != 0) {
    event_del(timer);
  }
  return 0;
}

void manager_t::on_timer(evutil_socket_t /*fd*/, short /*events*/, void* self) {
  auto& manager = *static_cast<manager_t*>(self);
  int running = 0;
  check(curl_multi_socket_action(manager.multi.get(), CURL_SOCKET_TIMEOUT, 0, &running),
        "timer_cb: curl_multi_socket_action");
  manager.check_completions();
}

void manager_t::on_socket_event(evutil_socket_t fd, short events, void* record) {
  auto& manager = static_cast<socket_record_t*>(record)->manager;
  // The record may be gone when this returns.
  int running = 0;
  check(curl_multi_socket_action(manager.multi.get(), fd, action_of(events), &running),
        "event_cb: curl_multi_socket_action");
  manager.check_completions();
}

void manager_t::check_completions() {
  if (given_up) {
    // libcurl ends each transfer only when it comes to it.
    int running = 0;
    check(curl_multi_perform(multi.get(), &running), "curl_multi_perform");
  }
  int left = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi.get(), &left)) {
    if (message->msg == CURLMSG_DONE) {
      complete(message->easy_handle, message->data.result);
    }
  }
}

void manager_t::complete(CURL* easy, CURLcode result) {
  request_t* request = live.at(easy).request.get();  // stays so if libcurl cannot tell
  check(curl_easy_getinfo(easy, CURLINFO_PRIVATE, &request), "curl_easy_getinfo - CURLINFO_PRIVATE");
  // Fetched for the line alone.
  const char* url = nullptr;
  check(curl_easy_getinfo(easy, CURLINFO_EFFECTIVE_URL, &url), "curl_easy_getinfo - CURLINFO_EFFECTIVE_URL");
  check(curl_multi_remove_handle(multi.get(), easy), "curl_multi_remove_handle");
  const auto ended = live.extract(easy);
  request->completed(result);
  request->finish();
}

}  // namespace zyl::curl
