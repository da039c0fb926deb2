#pragma once

#include <functional>
#include <string>

#include "engine_lib/engine_ipc.h"
#include "engine_lib/videng_messages.h"
#include "sim/descriptor.h"
#include "zyl/event_ptr.h"

namespace sim {

/// What a client of the video engine asks for. Called on the loop's thread.
struct engine_requests_t {
  std::function<void(eipc::socket_t& asking)> status;
  std::function<void(const videng::decoder_config_t& wanted)> decoder;
  std::function<void(const videng::raw_out_config_t& wanted)> raw_out;
};

/// One connection to the video engine. Loop thread only.
class engine_client_t : public eipc::receiver_t {
 public:
  /// `gone` is called once when the client has closed; it may destroy this object.
  engine_client_t(event_base* base, descriptor_t connection, const engine_requests_t& requests,
                  std::function<void(engine_client_t& client)> gone);
  ~engine_client_t() override;

  engine_client_t(const engine_client_t&) = delete;
  engine_client_t& operator=(const engine_client_t&) = delete;
  engine_client_t(engine_client_t&&) = delete;
  engine_client_t& operator=(engine_client_t&&) = delete;

  void received(eipc::socket_t& sk, const std::string& from, const eipc::message_type& type,
                zyl::datastream_strio_t& data, const std::vector<lnx::cmsg_t>& cmsgs) override;

  /// Sends packets that are no messages: cut, of a wrong length, of kinds that nobody knows.
  void send_junk();

 private:
  static void on_readable(evutil_socket_t fd, short events, void* self);

  const engine_requests_t& requests;
  std::function<void(engine_client_t& client)> on_gone;
  eipc::socket_t socket;
  zyl::event_ptr_t readable;
};

}  // namespace sim
