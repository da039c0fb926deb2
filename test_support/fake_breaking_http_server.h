#pragma once

#include <event2/bufferevent.h>
#include <event2/listener.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "test_support/loopback_listener.h"
#include "zyl/event_loop.h"

namespace test_support {

/// An HTTP server on the loopback interface, on a thread of its own, that promises ten bytes, sends "half." and goes no
/// further. Any thread may use it.
class fake_breaking_http_server_t {
 public:
  fake_breaking_http_server_t();
  ~fake_breaking_http_server_t();

  fake_breaking_http_server_t(const fake_breaking_http_server_t&) = delete;
  fake_breaking_http_server_t& operator=(const fake_breaking_http_server_t&) = delete;
  fake_breaking_http_server_t(fake_breaking_http_server_t&&) = delete;
  fake_breaking_http_server_t& operator=(fake_breaking_http_server_t&&) = delete;

  std::string url() const { return listener.url("/"); }

  /// Resets the connections so far.
  void reset();

  /// Closes the connections so far in order.
  void close();

  /// How many connections the other end has closed.
  int hung_up() const { return hung_up_count; }

 private:
  struct connection_free_t {
    void operator()(bufferevent* owned) const { bufferevent_free(owned); }
  };
  struct acceptor_free_t {
    void operator()(evconnlistener* owned) const { evconnlistener_free(owned); }
  };

  static void on_accept(evconnlistener* acceptor, evutil_socket_t fd, sockaddr* peer, int length, void* server);
  static void on_readable(bufferevent* connection, void* server);
  static void on_end(bufferevent* connection, short events, void* server);

  loopback_listener_t listener;
  std::atomic<int> hung_up_count = 0;
  zyl::event_loop_t loop;
  std::unique_ptr<evconnlistener, acceptor_free_t> acceptor;
  std::vector<std::unique_ptr<bufferevent, connection_free_t>> connections;
  std::thread thread;
};

}  // namespace test_support
