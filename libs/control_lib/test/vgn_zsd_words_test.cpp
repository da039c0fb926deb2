#include "control_lib/src/vgn_zsd_words.h"

#include <gtest/gtest.h>

namespace {

using namespace control_lib;

TEST(vgn_zsd_words, name_the_kinds_of_inputs) {
  EXPECT_EQ(input_kind_word(0), "HDMI_IN");
  EXPECT_EQ(input_kind_word(1), "INJECT");
  EXPECT_EQ(input_kind_word(2), "ENCODER");
  EXPECT_EQ(input_kind_word(3), "DECODER");
  EXPECT_EQ(input_kind_word(4), "HDMI_MUX_IN");
  EXPECT_EQ(input_kind_word(5), "MEDIACAST");
  EXPECT_EQ(input_kind_word(6), "LBR_V4L2");
  EXPECT_EQ(input_kind_word(7), "UNKNOWN (7)");
}

TEST(vgn_zsd_words, name_the_kinds_of_outputs) {
  EXPECT_EQ(output_kind_word(0), "HDMI_OUT");
  EXPECT_EQ(output_kind_word(1), "CAPTURE");
  EXPECT_EQ(output_kind_word(2), "UNKNOWN");
}

TEST(vgn_zsd_words, name_the_states_of_an_output) {
  EXPECT_EQ(output_enable_word(output_enable_e::unknown), "unknown");
  EXPECT_EQ(output_enable_word(output_enable_e::enable), "enable");
  EXPECT_EQ(output_enable_word(output_enable_e::disable), "disable");
}

TEST(vgn_zsd_words, name_the_states_of_content_protection) {
  EXPECT_EQ(hdcp_auth_word(vgn::hdcp_auth_e::off), "vgn_hdcp_auth_sts_off");
  EXPECT_EQ(hdcp_auth_word(vgn::hdcp_auth_e::busy), "vgn_hdcp_auth_sts_busy");
  EXPECT_EQ(hdcp_auth_word(vgn::hdcp_auth_e::hdcp_14), "vgn_hdcp_auth_sts_14");
  EXPECT_EQ(hdcp_auth_word(vgn::hdcp_auth_e::hdcp_22), "vgn_hdcp_auth_sts_22");
  EXPECT_EQ(hdcp_auth_word(vgn::hdcp_auth_e::failure), "vgn_hdcp_auth_sts_failure");
  EXPECT_EQ(hdcp_auth_word(vgn::hdcp_auth_e{9}), "9");
  EXPECT_EQ(hdcp_enc_word(vgn::hdcp_enc_e::off), "vgn_hdcp_enc_sts_off");
  EXPECT_EQ(hdcp_enc_word(vgn::hdcp_enc_e::busy), "vgn_hdcp_enc_sts_busy");
  EXPECT_EQ(hdcp_enc_word(vgn::hdcp_enc_e::success), "vgn_hdcp_enc_sts_success");
  EXPECT_EQ(hdcp_enc_word(vgn::hdcp_enc_e::failure), "vgn_hdcp_enc_sts_failure");
  EXPECT_EQ(hdcp_enc_word(vgn::hdcp_enc_e{4}), "4");
}

TEST(vgn_zsd_words, name_the_drivers_events) {
  EXPECT_EQ(link_event_word(0), "input_link");
  EXPECT_EQ(link_event_word(1), "input_streamup");
  EXPECT_EQ(link_event_word(2), "input_streamdown");
  EXPECT_EQ(link_event_word(3), "input_avi_infoframe");
  EXPECT_EQ(link_event_word(4), "output_link");
  EXPECT_EQ(link_event_word(5), "output_connection");
  EXPECT_EQ(link_event_word(6), "output_disconnection");
  EXPECT_EQ(link_event_word(7), "output_streamup");
  EXPECT_EQ(link_event_word(8), "output_streamdown");
  EXPECT_EQ(link_event_word(9), "(unknown)");
}

TEST(vgn_zsd_words, name_each_bit_of_an_event_with_a_blank_behind_it) {
  EXPECT_EQ(input_event_words(0), "");
  EXPECT_EQ(input_event_words(0x7F), "connection hdcp audio_channels active_audio streamup streamdown avi_infoframe ");
  EXPECT_EQ(output_event_words(0x7F), "connection disconnection streamup streamdown hdcp hdmi_enable vid_info ");
  EXPECT_EQ(output_event_words(0x80 | 16), "hdcp ");
}

}  // namespace
