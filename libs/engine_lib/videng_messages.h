#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine_lib/engine_ipc_message.h"

// The messages between the daemon and the video engine: all of family 4, fields in the order of the wire. The daemon
// asks and configures; the engine hands its status block over once and from then on answers by writing into it.

namespace eipc::gen {

/// Daemon to engine, 4:0: asks for the status block.
class fd_req_t : public message_base_t {
 public:
  static constexpr message_type kind{4, 0};

  zyl::datastream_t& serialize(zyl::datastream_t& out, std::vector<lnx::cmsg_t>& cmsgs) const override;

  uint32_t id = 0;
};

/// Engine to daemon, 4:1: the answer. `fd` is not in the payload but in one descriptor record beside it.
class fd_resp_t : public message_base_t {
 public:
  static constexpr message_type kind{4, 1};

  zyl::datastream_t& serialize(zyl::datastream_t& out, std::vector<lnx::cmsg_t>& cmsgs) const override;

  uint32_t id = 0;
  int32_t fd = -1;  // not owned
};

/// Readers of the payload; fields that the stream is too short for become 0. The answer's `fd` is left as it is.
zyl::datastream_t& operator>>(zyl::datastream_t& in, fd_req_t& out_message);
zyl::datastream_t& operator>>(zyl::datastream_t& in, fd_resp_t& out_message);

}  // namespace eipc::gen

namespace videng {

/// Daemon to engine, 4:4: the stream that one decoder plays. An empty `uri` with an empty `key` clears the decoder.
///
///   u8 decoder    u8 reserved, 0    string uri    string key
class decoder_config_t : public eipc::message_base_t {
 public:
  static constexpr eipc::message_type kind{4, 4};

  zyl::datastream_t& serialize(zyl::datastream_t& out, std::vector<lnx::cmsg_t>& cmsgs) const override;

  uint8_t decoder = 0;
  std::string uri;
  std::string key;
};

/// Daemon to engine, 4:6: the decoder that a raw output shows, as its instance within its kind, and the picture size.
class raw_out_config_t : public eipc::message_base_t {
 public:
  static constexpr eipc::message_type kind{4, 6};
  static constexpr uint32_t no_decoder = 0xFFFFFFFF;

  zyl::datastream_t& serialize(zyl::datastream_t& out, std::vector<lnx::cmsg_t>& cmsgs) const override;

  uint32_t raw_out = 0;
  uint32_t decoder = no_decoder;
  uint32_t width = 0;
  uint32_t height = 0;
};

zyl::datastream_t& operator>>(zyl::datastream_t& in, decoder_config_t& out_message);
zyl::datastream_t& operator>>(zyl::datastream_t& in, raw_out_config_t& out_message);

}  // namespace videng
