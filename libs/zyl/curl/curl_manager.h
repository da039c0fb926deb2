#pragma once

#include <curl/curl.h>
#include <event2/event.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <unordered_map>

#include "zyl/curl/curl_init.h"
#include "zyl/curl/request.h"
#include "zyl/event_ptr.h"

namespace zyl::curl {

/// Names a transfer that was added, beyond its end: no two transfers have the same, though a handle's address may come
/// back.
struct transfer_t {
  CURL* easy = nullptr;
  uint64_t serial = 0;
};

/// Carries transfers out on an event loop, as many at once as are added, without a thread of their own: libcurl's multi
/// interface, told by the loop what descriptors and timers do.
///
/// Lives on the loop's thread, where all requests are heard and destroyed. `add` and `remove` may come from any thread
/// while the manager lives, but not from a request's destructor: that may run while the manager ends. A libcurl call
/// that fails is logged at "zyl_curl" and stops nothing. If the loop cannot watch a descriptor, which is logged too,
/// that is the end of its work: all transfers, also those added later, end with CURLE_ABORTED_BY_CALLBACK.
class manager_t {
 public:
  /// `base` must outlive the manager. Throws `exception_t` if libcurl cannot be set up, and `std::bad_alloc`.
  explicit manager_t(event_base* base);

  /// Ends all transfers; their requests are destroyed without having been completed. On the loop's thread, or when the
  /// loop runs no more, but not from within a request.
  ~manager_t();

  manager_t(const manager_t&) = delete;
  manager_t& operator=(const manager_t&) = delete;
  manager_t(manager_t&&) = delete;
  manager_t& operator=(manager_t&&) = delete;

  /// Starts the transfer when the loop comes to it; not null. A request that libcurl refuses stays, without being
  /// completed, until it is removed. Any thread.
  transfer_t add(std::unique_ptr<request_t> request);

  /// Ends the transfer when the loop comes to it and destroys its request, without completing it. Nothing happens to
  /// one that has ended by then. Any thread.
  void remove(const transfer_t& transfer);

 private:
  struct live_request_t {
    std::unique_ptr<request_t> request;
    uint64_t serial;
  };
  /// A descriptor that libcurl wants watched. The manager hands it to libcurl by `curl_multi_assign`, to have it back
  /// whenever libcurl speaks of the descriptor.
  struct socket_record_t {
    int32_t fd;
    CURL* easy;
    int32_t action;
    event_ptr_t watcher;
    manager_t& manager;
  };
  struct multi_cleanup_t {
    void operator()(CURLM* owned) const { curl_multi_cleanup(owned); }
  };

  static int on_socket_wanted(CURL* easy, curl_socket_t fd, int action, void* self, void* record);
  static int on_timer_wanted(CURLM* multi, long timeout_ms, void* self);
  static void on_timer(evutil_socket_t fd, short events, void* self);
  static void on_socket_event(evutil_socket_t fd, short events, void* record);

  template <typename Call>
  void post_to_self(Call call);
  void start(std::unique_ptr<request_t> request, uint64_t serial);
  void end(const transfer_t& transfer);
  socket_record_t& make_record(curl_socket_t fd);
  bool watch(socket_record_t& record);
  void check_completions();
  void complete(CURL* easy, CURLcode result);

  // Closing the multi handle still calls back for timer and sockets, so it goes before them.
  std::unordered_map<curl_socket_t, socket_record_t> sockets;
  event_ptr_t timer;
  event_base* base;
  std::unique_ptr<CURLM, multi_cleanup_t> multi;

  std::unordered_map<CURL*, live_request_t> live;
  /// Whether a descriptor could not be watched. libcurl then ends all transfers, and must not be given others: it
  /// stumbles over what it still knows of them.
  bool given_up = false;
  std::atomic<uint64_t> last_serial = 0;
  // Posted calls that find it gone do nothing.
  std::shared_ptr<manager_t*> self;
};

}  // namespace zyl::curl
