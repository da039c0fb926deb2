#include "test_support/fake_http_server.h"

#include <event2/buffer.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

#include "zyl/post.h"

namespace test_support {
namespace {

struct evbuffer_free_t {
  void operator()(evbuffer* owned) const { evbuffer_free(owned); }
};
using evbuffer_ptr_t = std::unique_ptr<evbuffer, evbuffer_free_t>;

evbuffer_ptr_t buffer_of(std::string_view bytes) {
  evbuffer_ptr_t buffer(evbuffer_new());
  evbuffer_add(buffer.get(), bytes.data(), bytes.size());
  return buffer;
}

void reply(evhttp_request* request, std::string_view body) {
  evhttp_send_reply(request, HTTP_OK, "OK", buffer_of(body).get());
}

}  // namespace

fake_http_server_t::fake_http_server_t()
    : trickle_turn(event_new(loop.base(), -1, 0, on_trickle_turn, this)), http(evhttp_new(loop.base())) {
  evhttp_accept_socket(http, listener.listen());
  evhttp_set_max_body_size(http, 64 << 20);
  evhttp_set_gencb(http, on_request, this);
  thread = std::thread([this] { loop.run(); });
}

fake_http_server_t::~fake_http_server_t() {
  loop.stop();
  thread.join();
  // Its answer is what frees a request whose connection has gone.
  answer_held();
  for (const trickle_t& trickle : trickles) {
    evhttp_send_reply_end(trickle.request);
  }
  evhttp_free(http);
}

std::string fake_http_server_t::body_of(std::size_t size) {
  std::string body;
  for (std::size_t i = 0; body.size() < size; ++i) {
    body += std::to_string(i) + ' ';
  }
  body.resize(size);
  return body;
}

std::size_t fake_http_server_t::heard() const {
  const std::lock_guard lock(mutex);
  return request_count;
}

bool fake_http_server_t::hears(std::size_t count) const {
  std::unique_lock lock(mutex);
  return changed.wait_for(lock, std::chrono::seconds(20), [&] { return request_count >= count; });
}

void fake_http_server_t::release_held() {
  zyl::post(loop.base(), [this] { answer_held(); });
}

void fake_http_server_t::on_request(evhttp_request* request, void* server) {
  auto& self = *static_cast<fake_http_server_t*>(server);
  self.answer(request);
  const std::lock_guard lock(self.mutex);
  ++self.request_count;
  self.changed.notify_all();
}

void fake_http_server_t::answer(evhttp_request* request) {
  const std::string path = evhttp_request_get_uri(request);
  const std::size_t size = std::strtoul(path.c_str() + path.rfind('/') + 1, nullptr, 10);
  if (path == "/held") {
    held.push_back(request);
  } else if (path == "/echo") {
    evhttp_send_reply(request, HTTP_OK, "OK", evhttp_request_get_input_buffer(request));
  } else if (path.starts_with("/size/")) {
    reply(request, body_of(size));
  } else if (path.starts_with("/trickle/")) {
    evhttp_send_reply_start(request, HTTP_OK, "OK");
    trickles.push_back({request, body_of(size), 0});
    event_active(trickle_turn.get(), 0, 0);
  } else {
    evhttp_send_error(request, HTTP_NOTFOUND, nullptr);
  }
}

void fake_http_server_t::on_trickle_turn(evutil_socket_t /*fd*/, short /*events*/, void* server) {
  static_cast<fake_http_server_t*>(server)->send_trickles();
}

void fake_http_server_t::send_trickles() {
  std::vector<trickle_t> unfinished;
  for (trickle_t& trickle : trickles) {
    if (trickle.sent == trickle.body.size()) {
      evhttp_send_reply_end(trickle.request);
      continue;
    }
    evhttp_send_reply_chunk(trickle.request, buffer_of({&trickle.body[trickle.sent++], 1}).get());
    unfinished.push_back(std::move(trickle));
  }
  trickles = std::move(unfinished);
  if (!trickles.empty()) {
    const timeval next_turn{};
    event_add(trickle_turn.get(), &next_turn);
  }
}

void fake_http_server_t::answer_held() {
  for (evhttp_request* request : held) {
    reply(request, "released");
  }
  held.clear();
}

}  // namespace test_support
