#include <string>

#include "edid_lib/cta_audio_data_block.h"
#include "edid_lib/cta_extended_data_blocks.h"
#include "edid_lib/cta_hdmi_vsdb.h"
#include "edid_lib/cta_video_data_block.h"
#include "edid_lib/timing_lookup.h"
#include "fuzz/edid/support.h"

namespace fuzz::edid {
namespace {

using edid_lib::cta_data_block_t;

constexpr std::size_t largest_size = cta_data_block_t::largest_size;

void check(edid_lib::cta_video_data_block_t& block, input_t& input) {
  const vid_resolution_t mode = take_mode(input);
  const uint32_t vic = edid_lib::cta_vic(mode);
  const bool fits = block.size() < largest_size && vic != edid_lib::no_timing_number;
  const auto before = block.contains(mode);
  require(block.add(mode) == fits, "a mode with a code is added where there is room");
  require(!fits || block.bytes().back() == vic, "as its code");
  require(!fits || block.contains(mode), "and is there");
  require(!before || block.contains(mode)->index == before->index, "the first entry of a mode is told");
  for (const vid_resolution_t& one : block.modes()) {
    require(one.location == edid_lib::timing_location_t::cta_video_data_block, "modes tell where they are from");
  }
  block.clear();
  require(block.size() == 1 && block.modes().empty() && !block.contains(mode), "a block that is cleared is empty");
}

void check_descriptor(edid_lib::cta_audio_data_block_t& block, std::size_t descriptor, input_t& input) {
  const bool has = descriptor < block.count();
  const uint32_t format = input.take_byte();
  const uint32_t channels = input.take_byte();
  const uint8_t rates = input.take_byte();
  block.set_format(format, descriptor);
  block.set_channels(channels, descriptor);
  block.set_sample_rates(rates, descriptor);
  block.set_third_byte(rates, descriptor);
  require(block.format(descriptor) == (has ? format & 15 : 0), "a format is stored");
  require(block.channels(descriptor) == (has ? ((channels - 1) & 7) + 1 : 0xFFFFFFFF), "the channels are stored");
  require(block.sample_rates(descriptor) == (has ? rates & 0x7F : 0), "sample rates are stored");
  require(block.third_byte(descriptor) == (has ? rates : 0), "the third byte is stored");
  require(!edid_lib::audio_format_text(format).empty(), "any format has a text");
  require(edid_lib::sample_rates_text(rates).empty() == ((rates & 0x7F) == 0), "sample rates have words");
  require(edid_lib::bit_depths_text(rates).empty() == ((rates & 7) == 0), "sample sizes have words");
}

void check(edid_lib::cta_audio_data_block_t& block, input_t& input) {
  for (std::size_t descriptor = 0; descriptor <= block.count(); ++descriptor) {
    check_descriptor(block, descriptor, input);
  }
}

struct hdmi_flag_t {
  bool (edid_lib::cta_hdmi_vsdb_t::*get)() const;
  void (edid_lib::cta_hdmi_vsdb_t::*set)(bool);
  std::size_t least_size;
};

using hdmi_t = edid_lib::cta_hdmi_vsdb_t;

/// Capabilities make the block as long as they need, what is present does not.
constexpr hdmi_flag_t hdmi_flags[] = {
    {&hdmi_t::supports_ai, &hdmi_t::set_supports_ai, 0},
    {&hdmi_t::deep_color_48bit, &hdmi_t::set_deep_color_48bit, 0},
    {&hdmi_t::deep_color_36bit, &hdmi_t::set_deep_color_36bit, 0},
    {&hdmi_t::deep_color_30bit, &hdmi_t::set_deep_color_30bit, 0},
    {&hdmi_t::deep_color_ycc_444, &hdmi_t::set_deep_color_ycc_444, 0},
    {&hdmi_t::dvi_dual, &hdmi_t::set_dvi_dual, 0},
    {&hdmi_t::latency_present, &hdmi_t::set_latency_present, 9},
    {&hdmi_t::interlaced_latency_present, &hdmi_t::set_interlaced_latency_present, 9},
    {&hdmi_t::hdmi_video_present, &hdmi_t::set_hdmi_video_present, 9},
};

void check_hdmi_vics(hdmi_t& block, input_t& input) {
  const bool has_list = block.vic_length_offset() < block.size();
  require(block.hdmi_vics().size() <= block.hdmi_vic_count(), "no more HDMI VICs than are told of");
  require(block.modes().size() <= block.hdmi_vics().size(), "an HDMI VIC means at most one mode");
  const std::size_t size = block.size() - block.hdmi_vics().size();
  block.clear_hdmi_vics();
  require(block.size() == size && block.hdmi_vics().empty() && block.hdmi_vic_count() == 0, "the list is cleared");
  for (int i = 0; i < 8; ++i) {
    const vid_resolution_t mode = edid_lib::hdmi_resolution(input.take_byte() % 6);
    const uint32_t vic = edid_lib::hdmi_vic(mode);
    const std::size_t count = block.hdmi_vics().size();
    const bool fits = has_list && count < 7 && block.size() < largest_size && vic != edid_lib::no_timing_number;
    require(block.add(mode) == fits, "a mode with an HDMI VIC is added where there is room");
    require(block.hdmi_vics().size() == count + (fits ? 1 : 0), "and no other");
    require(!fits || block.hdmi_vics().back() == vic, "at the end");
  }
}

void check(hdmi_t& block, input_t& input) {
  check_hdmi_vics(block, input);
  const auto address = static_cast<uint16_t>(take_number(input));
  block.set_physical_address(address);
  require(block.physical_address() == (block.size() >= 6 ? address : 0xFFFFFFFF), "a physical address is stored");
  for (const hdmi_flag_t& flag : hdmi_flags) {
    const bool on = take_flag(input);
    (block.*flag.set)(on);
    require((block.*flag.get)() == (on && block.size() >= flag.least_size), "an HDMI flag is stored");
  }
  const uint32_t megahertz = take_number(input) % 2048;
  block.set_max_tmds_mhz(megahertz);
  require(block.max_tmds_mhz() == std::min(megahertz / 5 * 5, 1275U), "a TMDS clock is stored in steps");
  check_hdmi_vics(block, input);
}

void check(edid_lib::cta_hdmi_forum_vsdb_t& block, input_t& input) {
  const uint32_t before = block.max_tmds_rate();
  const uint32_t rate = take_number(input) % 2048;
  block.set_max_tmds_rate(rate);
  const uint32_t stored = rate < 340 ? 0 : std::min(rate / 5 * 5, 1275U);
  require(block.max_tmds_rate() == (block.size() < 6 || rate == 0 ? before : stored), "a TMDS rate is stored");
  const bool on = take_flag(input);
  block.set_osd_disparity_3d(on);
  block.set_deep_color_420_36bit(on);
  block.set_deep_color_420_30bit(!on);
  require(block.osd_disparity_3d() == (on && block.size() > 6), "a forum flag is stored");
  require(block.deep_color_420_36bit() == (on && block.size() > 7), "and so is another");
  require(block.deep_color_420_30bit() == (!on && block.size() > 7), "and so is the third");
  const bool others = block.scdc_present() || block.read_request_capable() || block.scrambles_up_to_340_mhz();
  require(block.size() > 6 || !others, "what is not there is not set");
  require(block.size() > 7 || !block.deep_color_420_48bit(), "nor is this");
}

void check(edid_lib::cta_colorimetry_exdb_t& block, input_t& input) {
  const uint8_t bits = input.take_byte();
  block.set_colorimetries(bits);
  const bool has = block.size() > 2;
  require(block.colorimetries() == (has ? bits : 0), "colorimetries are stored");
  const bool flags[] = {block.xvycc_601(), block.xvycc_709(),    block.sycc_601(),    block.op_ycc_601(),
                        block.op_rgb(),    block.bt_2020_cycc(), block.bt_2020_ycc(), block.bt_2020_rgb()};
  for (std::size_t i = 0; i < std::size(flags); ++i) {
    require(flags[i] == (has && (bits >> i & 1) != 0), "each by its bit");
  }
  require(edid_lib::colorimetries_text(bits).empty() == (bits == 0), "and have words");
  const uint8_t metadata = input.take_byte() % 32;
  const uint8_t before = block.metadata();
  require(block.set_metadata(metadata) == (metadata <= 15 && block.size() > 3), "four bits of metadata are stored");
  require(block.metadata() == (metadata <= 15 && block.size() > 3 ? metadata : before), "where there is room");
}

void check(edid_lib::cta_video_capability_exdb_t& block, input_t& input) {
  using edid_lib::overscan_behavior_t;
  const auto before = static_cast<uint8_t>(block.preferred_timing());
  const uint8_t bits = input.take_byte() % 4;
  block.set_preferred_timing(overscan_behavior_t(bits));
  const int stored = block.size() > 2 ? before | bits : 0;
  require(static_cast<uint8_t>(block.preferred_timing()) == stored, "setting only adds");
  block.set_it_video(overscan_behavior_t::selectable);
  block.set_ce_video(overscan_behavior_t::selectable);
  block.set_quantization_ycc(true);
  block.set_quantization_rgb(true);
  block.set_quantization_rgb(false);
  require((block.it_video() == overscan_behavior_t::selectable) == (block.size() > 2), "IT video is stored");
  require(block.ce_video() == block.it_video(), "so is CE video");
  require(block.quantization_ycc() == (block.size() > 2) && block.quantization_rgb() == (block.size() > 2),
          "and is not taken back");
}

void check(edid_lib::cta_ycc_420_video_exdb_t& block, input_t& input) {
  const uint8_t vic = input.take_byte();
  const std::size_t count = block.vics().size();
  const bool fits = block.size() >= 2 && block.size() < largest_size;
  require(block.add(vic) == fits && block.vics().size() == count + (fits ? 1 : 0), "a code is added where it fits");
  require(!fits || block.vics().back() == vic, "at the end");
  block.clear_vics();
  require(block.vics().empty(), "a list that is cleared is empty");
}

void check(edid_lib::cta_ycc_420_capability_exdb_t& block, input_t& input) {
  const std::size_t entry = take_number(input) % 300;
  const bool fits = block.size() >= 2 && entry < (largest_size - 2) * 8;
  const bool before = block.contains(entry);
  require(block.set(entry, true) == fits && block.contains(entry) == (fits || before), "a bit is set where it fits");
  require(!fits || !block.means_all(), "and then not all are meant");
  require(block.set(entry, false) == fits && block.contains(entry) == (!fits && before), "and cleared");
}

/// Checks a block that is of this very class; false for others.
template <typename block_t>
bool check_if(cta_data_block_t& block, input_t& input) {
  auto* one = dynamic_cast<block_t*>(&block);
  if (one != nullptr) {
    check(*one, input);
  }
  return one != nullptr;
}

void check_by_class(cta_data_block_t& block, input_t& input) {
  check_if<edid_lib::cta_video_data_block_t>(block, input) ||
      check_if<edid_lib::cta_audio_data_block_t>(block, input) || check_if<hdmi_t>(block, input) ||
      check_if<edid_lib::cta_hdmi_forum_vsdb_t>(block, input) ||
      check_if<edid_lib::cta_colorimetry_exdb_t>(block, input) ||
      check_if<edid_lib::cta_video_capability_exdb_t>(block, input) ||
      check_if<edid_lib::cta_ycc_420_video_exdb_t>(block, input) ||
      check_if<edid_lib::cta_ycc_420_capability_exdb_t>(block, input);
}

void check_vendor(cta_data_block_t& block) {
  const auto* vendor = dynamic_cast<edid_lib::cta_vendor_specific_data_block_t*>(&block);
  require(vendor == nullptr || vendor->valid() || vendor->size() < 4 ||
              vendor->ieee_id() == edid_lib::cta_hdmi_forum_vsdb_t::own_ieee_id,
          "a vendor block with an id is valid, but for a version");
}

void check_vendor_id(cta_data_block_t& block, input_t& input) {
  auto* vendor = dynamic_cast<edid_lib::cta_vendor_specific_data_block_t*>(&block);
  if (vendor == nullptr) {
    return;
  }
  const uint32_t id = take_number(input);
  vendor->set_ieee_id(id);
  require(vendor->ieee_id() == (vendor->size() >= 4 ? id & 0xFFFFFF : 0xFFFFFFFF), "an id is stored");
}

/// A block of any length but none that can be told of tells it, and its accessors find what is there.
void check_resized(cta_data_block_t& block, input_t& input) {
  const std::size_t size = input.take_byte() % 40 + 1U;
  block.resize(size, 0x55);
  require(block.size() == size, "a block has the size that it is given");
  require(size > largest_size || cta_data_block_t::told_size(block.byte(0)) == size, "and tells it");
  check_by_class(block, input);
}

}  // namespace

void check_data_block(cta_data_block_t& block, input_t& input) {
  require(!block.name().empty() && block.tag() == block.byte(0) >> 5, "a block has the tag of its first byte");
  if (const auto* extended = dynamic_cast<edid_lib::cta_extended_data_block_t*>(&block)) {
    require(extended->valid() && extended->extended_tag() == block.byte(1), "and the extended tag of its second");
    require(edid_lib::is_known_extended_tag(block.byte(1)) && !extended->extended_name().empty(), "which is known");
  }
  check_vendor(block);
  check_by_class(block, input);
  check_resized(block, input);
  check_vendor_id(block, input);
}

}  // namespace fuzz::edid
