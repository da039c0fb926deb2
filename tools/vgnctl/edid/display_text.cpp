#include "tools/vgnctl/edid/display_text.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <sstream>
#include <string_view>

#include "edid_lib/cta_extended_data_blocks.h"
#include "edid_lib/cta_hdmi_vsdb.h"
#include "edid_lib/cta_video_data_block.h"
#include "edid_lib/manufacturer_names.h"
#include "edid_lib/tarn_filter_resolution.h"
#include "tools/vgnctl/edid/edid_json.h"
#include "tools/vgnctl/edid/hex_text.h"
#include "tools/vgnctl/edid/mode_text.h"
#include "tools/vgnctl/edid/text_descriptor.h"

namespace vgnctl {
namespace {

using edid_lib::cta_extension_t;
using edid_lib::edid_base_t;

/// Bytes from a display, made fit for a terminal.
std::string printable(std::string text) {
  for (char& one : text) {
    one = one >= ' ' && one <= '~' ? one : '.';
  }
  return text;
}

std::string maker_text(const edid_base_t& base) {
  const std::string id = base.manufacturer_id();
  std::ostringstream out;
  out << edid_lib::manufacturer_name(id) << " (" << id << "), product 0x" << std::hex << base.product_code() << std::dec
      << ", serial number " << base.serial_number();
  return out.str();
}

std::string made_text(const edid_base_t& base) {
  const std::string year = std::to_string(base.year());
  return base.week() == 0 ? year : year + ", week " + std::to_string(base.week());
}

/// Of the bytes of a block as the display has it; `repaired` is what has become of them.
std::string checksum_text(std::span<const uint8_t> bytes, const edid_lib::edid_block_t& repaired) {
  constexpr std::size_t checksum_at = 127;
  if (bytes.size() <= checksum_at) {
    return "cut short, repaired";
  }
  const bool right = edid_lib::checksum_of(bytes, checksum_at) == bytes[checksum_at];
  const bool kept = std::equal(repaired.bytes().begin(), repaired.bytes().end(), bytes.begin());
  return std::string(right ? "checksum right" : "checksum wrong") + (kept ? "" : ", repaired");
}

std::string version_text(const edid_lib::edid_t& edid) {
  const edid_base_t& base = *edid.base();
  std::ostringstream out;
  out << "EDID " << +base.version() << '.' << +base.revision() << ", " << +base.extension_count()
      << (base.extension_count() == 1 ? " extension, " : " extensions, ") << checksum_text(edid.bytes(), base);
  return out.str();
}

std::string picture_text(const edid_base_t& base) {
  std::ostringstream out;
  out << +base.h_size_cm() << " cm x " << +base.v_size_cm() << " cm, gamma " << base.gamma();
  if (base.color_depth() != 0) {
    out << ", " << +base.color_depth() << " bits a colour";
  }
  return out.str();
}

std::string joined_keys(const std::vector<edid_lib::vid_resolution_t>& modes) {
  std::string text;
  for (const auto& mode : modes) {
    text += (text.empty() ? "" : ", ") + mode.key();
  }
  return text.empty() ? "none" : text;
}

std::string base_lines(const edid_lib::edid_t& edid) {
  const edid_base_t& base = *edid.base();
  std::string lines = field_line("Maker", maker_text(base)) + field_line("Made", made_text(base)) +
                      field_line("Base block", version_text(edid)) + field_line("Picture", picture_text(base));
  for (const auto& block : base.descriptors()) {
    if (const auto text = text_of_descriptor(*block)) {
      lines += field_line("Text", '"' + printable(*text) + "\", " + std::string(block->name()));
    }
  }
  return lines + field_line("Detailed", joined_keys(base.detailed().modes())) +
         field_line("Standard", joined_keys(base.standard().modes(base.revision(), true))) +
         field_line("Established", joined_keys(base.established().modes()));
}

std::string extension_text(const edid_lib::edid_t& edid) {
  constexpr std::size_t block_size = 128;
  const cta_extension_t& extension = *edid.cta();
  std::string text = "native timings: " + std::to_string(extension.native_count()) + ", ";
  text += checksum_text(edid.bytes().subspan(block_size), extension);
  text += extension.underscan() ? ", underscan" : "";
  text += extension.basic_audio() ? ", basic audio" : "";
  text += extension.ycc_444() ? ", YCC 4:4:4" : "";
  text += extension.ycc_422() ? ", YCC 4:2:2" : "";
  return text;
}

/// Modes of the blocks that have some, the bytes of the others.
std::string content_text(const edid_lib::cta_data_block_t& block) {
  if (const auto* video = dynamic_cast<const edid_lib::cta_video_data_block_t*>(&block)) {
    return joined_keys(video->modes());
  }
  if (const auto* hdmi = dynamic_cast<const edid_lib::cta_hdmi_vsdb_t*>(&block)) {
    return joined_keys(hdmi->modes()) + "; greatest TMDS clock " + std::to_string(hdmi->max_tmds_mhz()) + " MHz";
  }
  return hex_text(block.bytes());
}

std::string block_line(const edid_lib::cta_data_block_t& block) {
  const auto* extended = dynamic_cast<const edid_lib::cta_extended_data_block_t*>(&block);
  const std::string name(extended != nullptr ? extended->extended_name() : block.name());
  return "    " + name + (block.valid() ? ": " : " (not valid): ") + content_text(block) + '\n';
}

std::string extension_lines(const edid_lib::edid_t& edid) {
  const cta_extension_t& extension = *edid.cta();
  std::string lines = field_line("CTA extension", extension_text(edid));
  for (const auto& block : extension.data_blocks()) {
    lines += block_line(*block);
  }
  if (const auto* detailed = extension.detailed_timings()) {
    lines += "    Detailed Timings: " + joined_keys(detailed->modes()) + '\n';
  }
  return lines;
}

/// Only the block behind the base block is looked at, and others may have modes that are not seen.
std::string no_extension_text(const edid_lib::edid_t& edid) {
  return edid.base()->extension_count() == 0 ? "none" : "none, the first extension is another one or is missing";
}

std::string usable_text(edid_lib::edid_t& edid) {
  const std::size_t all = modes_of(edid).size();
  const auto usable = edid_lib::output_connection_filter().modes(edid);
  std::string text = std::to_string(usable.size()) + " of " + std::to_string(all) + " modes";
  return usable.empty() ? text : text + ", the first is " + usable.front().key();
}

}  // namespace

std::string display_lines(edid_lib::edid_t& edid) {
  std::string lines = field_line("Valid", edid.valid() ? "yes" : "no") + base_lines(edid);
  lines += edid.cta() != nullptr ? extension_lines(edid) : field_line("CTA extension", no_extension_text(edid));
  return lines + field_line("Usable", usable_text(edid));
}

}  // namespace vgnctl
