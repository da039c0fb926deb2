#include "test_support/fake_breaking_http_server.h"

#include <event2/buffer.h>
#include <sys/socket.h>

#include <string_view>

#include "zyl/post.h"

namespace test_support {

fake_breaking_http_server_t::fake_breaking_http_server_t()
    : acceptor(evconnlistener_new(loop.base(), on_accept, this, LEV_OPT_CLOSE_ON_FREE, 0, listener.listen())) {
  thread = std::thread([this] { loop.run(); });
}

fake_breaking_http_server_t::~fake_breaking_http_server_t() {
  loop.stop();
  thread.join();
}

void fake_breaking_http_server_t::reset() {
  zyl::post(loop.base(), [this] {
    for (const auto& connection : connections) {
      const linger at_once{1, 0};
      ::setsockopt(bufferevent_getfd(connection.get()), SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
    }
    connections.clear();
  });
}

void fake_breaking_http_server_t::close() {
  zyl::post(loop.base(), [this] { connections.clear(); });
}

void fake_breaking_http_server_t::on_accept(evconnlistener* /*acceptor*/, evutil_socket_t fd, sockaddr* /*peer*/,
                                            int /*length*/, void* server) {
  auto& self = *static_cast<fake_breaking_http_server_t*>(server);
  bufferevent* const connection = bufferevent_socket_new(self.loop.base(), fd, BEV_OPT_CLOSE_ON_FREE);
  bufferevent_setcb(connection, on_readable, nullptr, on_end, server);
  bufferevent_enable(connection, EV_READ | EV_WRITE);
  self.connections.emplace_back(connection);
}

void fake_breaking_http_server_t::on_readable(bufferevent* connection, void* /*server*/) {
  evbuffer* const heard = bufferevent_get_input(connection);
  constexpr std::string_view end_of_head = "\r\n\r\n";
  if (evbuffer_search(heard, end_of_head.data(), end_of_head.size(), nullptr).pos >= 0) {
    evbuffer_drain(heard, evbuffer_get_length(heard));
    constexpr std::string_view answer = "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhalf.";
    bufferevent_write(connection, answer.data(), answer.size());
  }
}

void fake_breaking_http_server_t::on_end(bufferevent* /*connection*/, short events, void* server) {
  if ((events & (BEV_EVENT_EOF | BEV_EVENT_ERROR)) != 0) {
    ++static_cast<fake_breaking_http_server_t*>(server)->hung_up_count;
  }
}

}  // namespace test_support
