// Payloads of the engine link: a byte that says of which message, then the payload.
#include "engine_lib/videng_messages.h"

#include "fuzz/target.h"

namespace {

using fuzz::require;

template <typename Message>
Message read(std::string_view payload, std::size_t& out_left) {
  zyl::datastream_strio_t stream{std::string(payload)};
  Message message;
  stream >> message;
  out_left = stream.data().size();
  return message;
}

std::string written(const eipc::message_base_t& message) {
  zyl::datastream_strio_t stream;
  std::vector<lnx::cmsg_t> cmsgs;
  message.serialize(stream, cmsgs);
  return std::string(stream.data());
}

bool is_numbers(std::string_view payload, std::size_t size) { return payload.size() == size; }

bool has_text(std::string_view& payload) {
  uint32_t length = 0;
  for (std::size_t i = 0; i < sizeof length && i < payload.size(); ++i) {
    length |= static_cast<uint32_t>(static_cast<uint8_t>(payload[i])) << (8 * i);
  }
  if (payload.size() < sizeof length || payload.size() - sizeof length < length) {
    return false;
  }
  payload.remove_prefix(sizeof length + length);
  return true;
}

bool is_decoder_config(std::string_view payload) {
  if (payload.size() < 2 || payload[1] != '\0') {
    return false;
  }
  payload.remove_prefix(2);
  return has_text(payload) && has_text(payload) && payload.empty();
}

/// `whole`: the payload is exactly such a message. Any payload reads as some message, which then is stable.
template <typename Message>
void check(std::string_view payload, bool whole) {
  std::size_t left = 0;
  const std::string once = written(read<Message>(payload, left));
  require(!whole || (once == payload && left == 0), "a whole message is written as it was");
  require(written(read<Message>(once, left)) == once, "a message that was written reads the same");
  require(left == 0, "and holds nothing else");
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::input_t input(data, size);
  const uint8_t kind = input.take_byte();
  const std::string_view payload = input.rest();
  switch (kind % 4) {
    case 0:
      check<eipc::gen::fd_req_t>(payload, is_numbers(payload, 4));
      break;
    case 1:
      check<eipc::gen::fd_resp_t>(payload, is_numbers(payload, 4));
      break;
    case 2:
      check<videng::decoder_config_t>(payload, is_decoder_config(payload));
      break;
    default:
      check<videng::raw_out_config_t>(payload, is_numbers(payload, 16));
  }
  return 0;
}
