#pragma once

#include <event2/event.h>
#include <event2/http.h>

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "test_support/loopback_listener.h"
#include "zyl/event_loop.h"
#include "zyl/event_ptr.h"

namespace test_support {

/// An HTTP server on the loopback interface, on a thread of its own. Any thread may use it. Its pages:
///
///   /size/N      N bytes, as `body_of(N)` gives them
///   /trickle/N   the same, each byte in a piece of its own, one each turn of the server's loop
///   /echo        the body that was sent
///   /held        "released", once `release_held` was called after the request
///   others       status 404
class fake_http_server_t {
 public:
  fake_http_server_t();
  ~fake_http_server_t();

  fake_http_server_t(const fake_http_server_t&) = delete;
  fake_http_server_t& operator=(const fake_http_server_t&) = delete;
  fake_http_server_t(fake_http_server_t&&) = delete;
  fake_http_server_t& operator=(fake_http_server_t&&) = delete;

  std::string url(const std::string& path) const { return listener.url(path); }

  /// Bytes of which no two neighbouring runs are the same.
  static std::string body_of(std::size_t size);

  /// How many requests have come in.
  std::size_t heard() const;
  /// Waits until so many requests have come in. False if they have not after 20 seconds.
  bool hears(std::size_t count) const;

  /// Answers the requests for "/held" so far.
  void release_held();

 private:
  /// A page on its way out byte by byte.
  struct trickle_t {
    evhttp_request* request;
    std::string body;
    std::size_t sent;
  };

  static void on_request(evhttp_request* request, void* server);
  static void on_trickle_turn(evutil_socket_t fd, short events, void* server);
  void answer(evhttp_request* request);
  void send_trickles();
  void answer_held();

  loopback_listener_t listener;
  mutable std::mutex mutex;
  mutable std::condition_variable changed;
  std::size_t request_count = 0;
  std::vector<evhttp_request*> held;
  std::vector<trickle_t> trickles;
  zyl::event_loop_t loop;
  zyl::event_ptr_t trickle_turn;
  evhttp* http;
  std::thread thread;
};

}  // namespace test_support
