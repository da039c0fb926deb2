#include "sim/engine_client.h"

#include <sys/socket.h>

#include <string_view>
#include <utility>

namespace sim {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view junk[] = {
    "\x04"sv,                                                                  // less than a header
    "\x04\0\0\0\x09\0\0\0\x10\0\0\0\0\0\0\0"sv,                                // announces bytes that do not follow
    "\x04\0\0\0\x63\0\0\0\0\0\0\0\0\0\0\0"sv,                                  // of a type that is none
    "\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xffxxxx"sv,  // all bits
    "\x04\0\0\0\x09\0\0\0\x03\0\0\0\0\0\0\0\xff\xff\xff"sv,                    // a command longer than its packet
};

}  // namespace

engine_client_t::engine_client_t(event_base* base, descriptor_t connection, const engine_requests_t& served,
                                 std::function<void(engine_client_t&)> gone)
    : requests(served), on_gone(std::move(gone)), socket(connection.release()) {
  socket.add_receiver(this,
                      {eipc::gen::fd_req_t::kind, videng::decoder_config_t::kind, videng::raw_out_config_t::kind});
  readable.reset(event_new(base, socket.descriptor(), EV_READ | EV_PERSIST, on_readable, this));
  event_add(readable.get(), nullptr);
}

// The event goes before the descriptor that it watches is closed.
engine_client_t::~engine_client_t() { readable.reset(); }

void engine_client_t::on_readable(evutil_socket_t /*fd*/, short /*events*/, void* self) {
  auto* client = static_cast<engine_client_t*>(self);
  if (client->socket.process() < 0) {
    const auto gone = client->on_gone;  // the call may end the client, and with it its own copy
    gone(*client);
  }
}

void engine_client_t::received(eipc::socket_t& sk, const std::string& /*from*/, const eipc::message_type& type,
                               zyl::datastream_strio_t& data, const std::vector<lnx::cmsg_t>& /*cmsgs*/) {
  if (type == eipc::gen::fd_req_t::kind) {
    requests.status(sk);
  } else if (type == videng::decoder_config_t::kind) {
    videng::decoder_config_t wanted;
    data >> wanted;
    requests.decoder(wanted);
  } else {
    videng::raw_out_config_t wanted;
    data >> wanted;
    requests.raw_out(wanted);
  }
}

void engine_client_t::send_junk() {
  for (const std::string_view packet : junk) {
    static_cast<void>(::send(socket.descriptor(), packet.data(), packet.size(), MSG_DONTWAIT | MSG_NOSIGNAL));
  }
}

}  // namespace sim
