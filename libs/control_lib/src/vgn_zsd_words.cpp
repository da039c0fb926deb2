#include "control_lib/src/vgn_zsd_words.h"

#include <array>
#include <span>

namespace control_lib {
namespace {

using words_t = std::span<const std::string_view>;

constexpr std::array<std::string_view, 7> input_kinds{"HDMI_IN",     "INJECT",    "ENCODER", "DECODER",
                                                      "HDMI_MUX_IN", "MEDIACAST", "LBR_V4L2"};
constexpr std::array<std::string_view, 2> output_kinds{"HDMI_OUT", "CAPTURE"};
constexpr std::array<std::string_view, 3> enables{"unknown", "enable", "disable"};
constexpr std::array<std::string_view, 5> authentications{"vgn_hdcp_auth_sts_off", "vgn_hdcp_auth_sts_busy",
                                                          "vgn_hdcp_auth_sts_14", "vgn_hdcp_auth_sts_22",
                                                          "vgn_hdcp_auth_sts_failure"};
constexpr std::array<std::string_view, 4> encryptions{"vgn_hdcp_enc_sts_off", "vgn_hdcp_enc_sts_busy",
                                                      "vgn_hdcp_enc_sts_success", "vgn_hdcp_enc_sts_failure"};
constexpr std::array<std::string_view, 9> link_events{"input_link",           "input_streamup",  "input_streamdown",
                                                      "input_avi_infoframe",  "output_link",     "output_connection",
                                                      "output_disconnection", "output_streamup", "output_streamdown"};
constexpr std::array<std::string_view, 7> input_events{"connection", "hdcp",       "audio_channels", "active_audio",
                                                       "streamup",   "streamdown", "avi_infoframe"};
constexpr std::array<std::string_view, 7> output_events{"connection", "disconnection", "streamup", "streamdown",
                                                        "hdcp",       "hdmi_enable",   "vid_info"};

std::string_view word_or(words_t words, uint32_t number, std::string_view otherwise) {
  return number < words.size() ? words[number] : otherwise;
}

std::string words_of_bits(words_t words, uint32_t bits) {
  std::string text;
  for (size_t bit = 0; bit < words.size(); ++bit) {
    if ((bits >> bit & 1) != 0) {
      text.append(words[bit]).append(" ");
    }
  }
  return text;
}

}  // namespace

std::string input_kind_word(uint32_t kind) {
  return std::string(word_or(input_kinds, kind, "UNKNOWN (" + std::to_string(kind) + ")"));
}

std::string_view output_kind_word(uint32_t kind) { return word_or(output_kinds, kind, "UNKNOWN"); }

std::string_view output_enable_word(output_enable_e enable) { return enables[static_cast<size_t>(enable)]; }

std::string hdcp_auth_word(vgn::hdcp_auth_e authentication) {
  const auto number = static_cast<uint32_t>(authentication);
  return std::string(word_or(authentications, number, std::to_string(number)));
}

std::string hdcp_enc_word(vgn::hdcp_enc_e encryption) {
  const auto number = static_cast<uint32_t>(encryption);
  return std::string(word_or(encryptions, number, std::to_string(number)));
}

std::string_view link_event_word(uint32_t type) { return word_or(link_events, type, "(unknown)"); }

std::string input_event_words(uint32_t bits) { return words_of_bits(input_events, bits); }

std::string output_event_words(uint32_t bits) { return words_of_bits(output_events, bits); }

}  // namespace control_lib
