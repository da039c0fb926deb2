#include "engine_lib/videng_messages.h"

#include <gtest/gtest.h>

#include <string>

using namespace std::string_literals;

namespace {

std::string payload_of(const eipc::message_base_t& message) {
  zyl::datastream_strio_t out;
  std::vector<lnx::cmsg_t> cmsgs;
  EXPECT_EQ(&message.serialize(out, cmsgs), &out);
  EXPECT_TRUE(cmsgs.empty());
  return std::string(out.data());
}

}  // namespace

TEST(VidengMessages, TheRequestForTheStatusBlockIsItsId) {
  eipc::gen::fd_req_t message;
  EXPECT_EQ(payload_of(message), "\0\0\0\0"s);
  message.id = 0x01020304;
  EXPECT_EQ(payload_of(message), "\x04\x03\x02\x01");
}

TEST(VidengMessages, TheAnswerCarriesItsDescriptorBesideThePayload) {
  eipc::gen::fd_resp_t message;
  message.id = 5;
  message.fd = 17;
  zyl::datastream_strio_t out;
  std::vector<lnx::cmsg_t> cmsgs;
  message.serialize(out, cmsgs);
  EXPECT_EQ(out.data(), "\x05\0\0\0"s);
  ASSERT_EQ(cmsgs.size(), 1U);
  ASSERT_TRUE(cmsgs[0].has_fd());
  EXPECT_EQ(cmsgs[0].fd(), 17);
}

TEST(VidengMessages, ADecoderConfigurationHasAReservedByteAfterItsIndex) {
  videng::decoder_config_t message;
  message.decoder = 24;
  message.uri = "ab";
  message.key = "k";
  EXPECT_EQ(payload_of(message), "\x18\0\x02\0\0\0ab\x01\0\0\0k"s);
}

TEST(VidengMessages, ClearingADecoderTakesTenBytes) { EXPECT_EQ(payload_of(videng::decoder_config_t()).size(), 10U); }

TEST(VidengMessages, ARawOutputWithoutDecoderSendsAllOnes) {
  videng::raw_out_config_t message;
  message.raw_out = 1;
  EXPECT_EQ(payload_of(message), "\x01\0\0\0\xff\xff\xff\xff\0\0\0\0\0\0\0\0"s);
}

TEST(VidengMessages, WhatIsWrittenIsReadBack) {
  videng::decoder_config_t decoder;
  decoder.decoder = 3;
  decoder.uri = "videng-pnl8-dmabuf0";
  decoder.key = std::string(30, 'k');
  zyl::datastream_strio_t stream(payload_of(decoder));
  videng::decoder_config_t read_decoder;
  stream >> read_decoder;
  EXPECT_EQ(read_decoder.decoder, 3);
  EXPECT_EQ(read_decoder.uri, decoder.uri);
  EXPECT_EQ(read_decoder.key, decoder.key);
  EXPECT_TRUE(stream.data().empty());

  videng::raw_out_config_t raw_out;
  raw_out.raw_out = 1;
  raw_out.decoder = 2;
  raw_out.width = 1920;
  raw_out.height = 1080;
  stream = zyl::datastream_strio_t(payload_of(raw_out));
  videng::raw_out_config_t read_raw_out;
  stream >> read_raw_out;
  EXPECT_EQ(payload_of(read_raw_out), payload_of(raw_out));

  eipc::gen::fd_req_t request;
  stream = zyl::datastream_strio_t("\x07\0\0\0"s);
  stream >> request;
  EXPECT_EQ(request.id, 7U);
}
