#include "engine_lib/videng_messages.h"

namespace eipc::gen {

zyl::datastream_t& fd_req_t::serialize(zyl::datastream_t& out, std::vector<lnx::cmsg_t>& /*cmsgs*/) const {
  return out << id;
}

zyl::datastream_t& fd_resp_t::serialize(zyl::datastream_t& out, std::vector<lnx::cmsg_t>& cmsgs) const {
  cmsgs.push_back(lnx::cmsg_t::rights(fd));
  return out << id;
}

zyl::datastream_t& operator>>(zyl::datastream_t& in, fd_req_t& out_message) { return in >> out_message.id; }

zyl::datastream_t& operator>>(zyl::datastream_t& in, fd_resp_t& out_message) { return in >> out_message.id; }

}  // namespace eipc::gen

namespace videng {

zyl::datastream_t& decoder_config_t::serialize(zyl::datastream_t& out, std::vector<lnx::cmsg_t>& /*cmsgs*/) const {
  return out << decoder << uint8_t{0} << uri << key;
}

zyl::datastream_t& operator>>(zyl::datastream_t& in, decoder_config_t& out_message) {
  uint8_t reserved = 0;
  return in >> out_message.decoder >> reserved >> out_message.uri >> out_message.key;
}

zyl::datastream_t& raw_out_config_t::serialize(zyl::datastream_t& out, std::vector<lnx::cmsg_t>& /*cmsgs*/) const {
  return out << raw_out << decoder << width << height;
}

zyl::datastream_t& operator>>(zyl::datastream_t& in, raw_out_config_t& out_message) {
  return in >> out_message.raw_out >> out_message.decoder >> out_message.width >> out_message.height;
}

}  // namespace videng
