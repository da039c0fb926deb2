#include "engine_lib/engine_ipc_message.h"

namespace eipc {

zyl::datastream_t& common_t::serialize(zyl::datastream_t& out, std::vector<lnx::cmsg_t>& /*cmsgs*/) const {
  return out << family << type << len << crc;
}

zyl::datastream_t& operator>>(zyl::datastream_t& in, common_t& out_header) {
  return in >> out_header.family >> out_header.type >> out_header.len >> out_header.crc;
}

}  // namespace eipc
