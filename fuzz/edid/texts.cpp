#include <sstream>
#include <string>

#include "edid_lib/color_filter.h"
#include "edid_lib/cta_audio_data_block.h"
#include "edid_lib/cta_extended_data_blocks.h"
#include "edid_lib/cta_hdmi_vsdb.h"
#include "edid_lib/cta_video_data_block.h"
#include "edid_lib/timing_lookup.h"
#include "edid_lib/timing_tables.h"
#include "edid_lib/timing_words.h"
#include "edid_lib/vid_info.h"
#include "edid_lib/visitor_modes.h"
#include "edid_lib/visitor_renderer.h"
#include "fuzz/edid/support.h"

namespace fuzz::edid {
namespace {

using edid_lib::color_format_t;
using edid_lib::no_timing_number;
using edid_lib::timing_location_t;
using edid_lib::timing_type_t;
using edid_lib::visitor_t;

template <typename value_t>
std::string text_of(const value_t& value) {
  std::ostringstream text;
  text << value;
  return text.str();
}

/// The word of a value means the value again, unless it has none.
template <typename Enum>
Enum check_word(uint32_t number) {
  const auto value = static_cast<Enum>(number);
  const std::string_view word = edid_lib::color_word(value);
  const Enum kept = word == "Unknown" ? Enum{} : value;
  require(edid_lib::color_value<Enum>(word) == kept, "a colour's word means it");
  return kept;
}

color_format_t take_format(input_t& input) {
  color_format_t format;
  format.colorimetry = edid_lib::color_standard_t(input.take_byte() % 12);
  format.encoding = edid_lib::color_encoding_t(input.take_byte() % 5);
  format.chroma = edid_lib::chroma_sampling_t(input.take_byte() % 5);
  format.range = edid_lib::color_range_t(input.take_byte() % 4);
  format.depth = edid_lib::color_depth_t(input.take_byte() % 6);
  return format;
}

color_format_t kept_of(const color_format_t& format) {
  color_format_t kept;
  kept.colorimetry = check_word<edid_lib::color_standard_t>(static_cast<uint32_t>(format.colorimetry));
  kept.encoding = check_word<edid_lib::color_encoding_t>(static_cast<uint32_t>(format.encoding));
  kept.chroma = check_word<edid_lib::chroma_sampling_t>(static_cast<uint32_t>(format.chroma));
  kept.range = check_word<edid_lib::color_range_t>(static_cast<uint32_t>(format.range));
  kept.depth = check_word<edid_lib::color_depth_t>(static_cast<uint32_t>(format.depth));
  return kept;
}

void check_format(const color_format_t& format) {
  color_format_t read;
  std::istringstream(text_of(format)) >> read;
  require(read == kept_of(format), "a colour format that is written and read is the same");
  const edid_lib::colorimetry_t part{format.colorimetry, format.encoding};
  require(text_of(part).starts_with("colorimetry_t{"), "its colorimetry has a text");
  const edid_lib::color_filter filter({read});
  require(filter.accept(read) && filter.accept(format) == (format == read), "a filter takes what it lists");
  require(filter.name() == "Tarn Video Endpoint Color Filter", "under its name");
}

/// Whatever is read as a colour format is one with words.
void check_format_text(const std::string& text) {
  color_format_t read;
  std::istringstream("color_format_t{" + text) >> read;
  require(kept_of(read) == read, "what was read has words");
  std::istringstream("other{" + text) >> read;
  require(kept_of(read) == read, "another name changes nothing");
}

void check_numbers(const vid_resolution_t& mode) {
  require(edid_lib::is_cta(mode) == (edid_lib::cta_vic(mode) != no_timing_number) &&
              edid_lib::is_cta(mode) == edid_lib::cta_timing(mode).known(),
          "a CTA mode has code and timing");
  require(edid_lib::is_hdmi(mode) == (edid_lib::hdmi_vic(mode) != no_timing_number) &&
              edid_lib::is_hdmi(mode) == edid_lib::hdmi_timing(mode).known(),
          "an HDMI mode has number and timing");
  require(edid_lib::is_established(mode) == (edid_lib::established_index(mode) != no_timing_number) &&
              edid_lib::is_established(mode) == edid_lib::established_timing(mode).known(),
          "an established mode has bit and timing");
  require(edid_lib::is_dmt(mode) == edid_lib::dmt_timing(mode).known(), "a DMT mode has a timing");
  const auto told = edid_lib::dmt_timing_for(mode, mode.type);
  require(told == (mode.type == timing_type_t::dmt ? edid_lib::dmt_timing(mode) : edid_lib::vid_timing_t{}),
          "the type decides whether DMT is asked");
}

void check_family(const vid_resolution_t& mode) {
  const timing_type_t first = edid_lib::is_cta(mode)           ? timing_type_t::cta
                              : edid_lib::is_hdmi(mode)        ? timing_type_t::hdmi
                              : edid_lib::is_dmt(mode)         ? timing_type_t::dmt
                              : edid_lib::is_established(mode) ? timing_type_t::established
                                                               : timing_type_t::undefined;
  require(edid_lib::classify(mode) == first, "the first family that knows a mode is its class");
  const auto resolved = edid_lib::resolve_timing(mode);
  require(resolved.type == (mode.timing.known() ? mode.type : first), "a mode's own timing comes first");
  require(!mode.timing.known() || resolved.timing == mode.timing, "as it is");
}

void check_records(const vid_resolution_t& mode, input_t& input) {
  const edid_lib::vgn_mode_t numbered{mode.timing, take_number(input)};
  require(text_of(numbered) == "vgn_mode_t{" + text_of(mode.timing) + ',' + std::to_string(numbered.number) + '}',
          "a numbered timing has a text");
  const edid_lib::vgn_vid_info_t colored{mode.timing, take_format(input)};
  require(text_of(colored).starts_with("vgn_vid_info_t{vid_timing_t{ "), "so has one with colours");
  edid_lib::vid_timing_t read;
  std::istringstream(text_of(mode.timing)) >> read;
  require(read == mode.timing, "a timing that is written and read is the same");
}

template <typename block_t>
void visit_nothing(visitor_t& visitor) {
  for (const bool forward : {true, false}) {
    visitor.visit(static_cast<block_t*>(nullptr), forward);
  }
}

template <typename... block_t>
void visit_nothing_of(visitor_t& visitor) {
  (visit_nothing<block_t>(visitor), ...);
}

void check_no_blocks(visitor_t&& visitor) {
  using namespace edid_lib;
  visit_nothing_of<edid_t, edid_base_t, est_timings_block_t, std_timings_block_t, det_timings_block_t>(visitor);
  visit_nothing_of<base_descriptor_block_t, monitor_name_base_block_t, monitor_serial_base_block_t>(visitor);
  visit_nothing_of<ascii_string_base_block_t, cta_extension_t, cta_data_block_t, cta_video_data_block_t>(visitor);
  visit_nothing_of<cta_audio_data_block_t, cta_hdmi_vsdb_t, cta_hdmi_forum_vsdb_t, cta_colorimetry_exdb_t>(visitor);
  visit_nothing_of<cta_video_capability_exdb_t, cta_ycc_420_video_exdb_t, cta_ycc_420_capability_exdb_t>(visitor);
  visitor.read(nullptr);
  visitor.write(nullptr);
}

void check_tables() {
  require(edid_lib::all_established().size() == 17 && edid_lib::all_dmt().size() == 88, "the tables of VESA");
  require(edid_lib::all_cta().size() == 107 && edid_lib::all_hdmi().size() == 4, "the tables of CTA and HDMI");
  for (uint32_t number = 0; number < 256; ++number) {
    require(edid_lib::cta_resolution(number).has_value() == (number >= 1 && number <= 107), "codes 1 to 107");
    const auto hdmi = edid_lib::hdmi_resolution(static_cast<int32_t>(number) - 128);
    require((hdmi.width != 0) == (number >= 129 && number <= 132), "HDMI VICs 1 to 4");
    const auto* row = edid_lib::dmt_timings().find_number(number);
    require((row != nullptr) == (number < 88) && (row == nullptr || row->number == number), "DMT rows 0 to 87");
  }
}

void check_words() {
  for (uint32_t number = 0; number < 10; ++number) {
    const auto type = timing_type_t(number);
    require(edid_lib::timing_type_of(edid_lib::text_of(type)) == (number < 7 ? type : timing_type_t{}), "types");
    const auto location = timing_location_t(number);
    const auto read = edid_lib::timing_location_of(edid_lib::text_of(location));
    require(read == (number < 6 ? location : timing_location_t{}), "locations");
    const auto reason = edid_lib::refusal_reason_t(number);
    const std::string_view text = edid_lib::tarn_filter_resolution_t::reason_text(reason);
    require(text.empty() == (number > 8), "reasons");
    const std::string_view behavior = edid_lib::text_of(edid_lib::overscan_behavior_t(number));
    require((behavior == "Unknown") == (number > 3), "behaviours");
  }
}

/// Blocks that are made without bytes are valid, and no visitor is no trouble.
template <typename... block_t>
void check_new_blocks() {
  (require(block_t().valid(), "a new block is valid"), ...);
  for (const bool forward : {true, false}) {
    (block_t().accept(nullptr, forward), ...);
  }
}

}  // namespace

void check_mode_texts(const vid_resolution_t& mode) {
  require(mode.width > 0 && mode.height > 0, "a mode has a size");
  require(mode.location != timing_location_t::undefined, "a mode tells where it was found");
  const vid_resolution_t parsed(mode.key());
  require(parsed == mode && parsed.interlaced == mode.interlaced, "the text of a mode parses as that mode");
  require(mode.aspect_ratio().find(':') != std::string::npos, "a mode has an aspect");
  require(!(mode.is_4_3() && mode.is_16_9()), "and one only");
  check_numbers(mode);
  check_family(mode);
  const vid_resolution_t slower = edid_lib::rate_alternative(mode);
  require(slower.nominal_fps() <= mode.nominal_fps(), "the alternative to a rate is the slower one");
}

void check_mode_list(const modes_t& modes, input_t& input) {
  edid_lib::vid_info_t info;
  info.current_index = input.take_byte() - 4;
  info.modes = modes;
  const auto index = static_cast<std::size_t>(std::max(info.current_index, 0));
  require(info.current() == (index < modes.size() ? &info.modes[index] : nullptr), "the current mode is in the list");
  for (std::size_t i = 0; i < modes.size(); ++i) {
    const std::string text = info.list_text(i);
    require(text.ends_with('*') == (info.current_index == static_cast<int32_t>(i)), "a star tells the current mode");
    require(edid_lib::parse_list_text(text) == modes[i], "the text of a list's mode parses as that mode");
  }
  require(text_of(info).starts_with("vid_info_t{" + std::to_string(info.current_index)), "a list has a text");
  check_records(modes.empty() ? vid_resolution_t() : modes.front(), input);
}

void check_colors(const modes_t& modes, input_t& input) {
  const color_format_t format = take_format(input);
  check_format(format);
  check_format_text(std::string(input.take_text()));
  for (const vid_resolution_t& mode : modes) {
    const bool is_601 = mode.is_4_3() && edid_lib::is_cta(mode);
    require((default_colorimetry(mode) == edid_lib::color_standard_t::bt_601) == is_601, "4:3 CTA modes are BT.601");
    const bool is_vga = mode.width == 640 && mode.height == 480;
    const bool is_limited = format.encoding == edid_lib::color_encoding_t::ycc || (!is_vga && edid_lib::is_cta(mode));
    require((default_range(mode, format.encoding) == edid_lib::color_range_t::limited) == is_limited, "ranges");
  }
}

void check_constants() {
  check_no_blocks(edid_lib::visitor_modes_t());
  check_no_blocks(edid_lib::visitor_renderer_t());
  check_no_blocks(visitor_t());
  check_tables();
  check_words();
  check_new_blocks<edid_lib::cta_video_data_block_t, edid_lib::cta_audio_data_block_t, edid_lib::cta_hdmi_vsdb_t,
                   edid_lib::cta_hdmi_forum_vsdb_t, edid_lib::cta_colorimetry_exdb_t,
                   edid_lib::cta_video_capability_exdb_t, edid_lib::cta_ycc_420_video_exdb_t,
                   edid_lib::cta_ycc_420_capability_exdb_t, edid_lib::cta_extension_t>();
  require(edid_lib::cta_vendor_specific_data_block_t(0x123456).ieee_id() == 0x123456, "a vendor block has its id");
  edid_lib::edid_t none;
  require(!none.valid() && none.assemble().empty() && none.ensure_cta() == nullptr, "no EDID has no parts");
  require(modes_of(none).empty(), "and no modes");
}

}  // namespace fuzz::edid
