#include "edid_lib/cta_extended_data_blocks.h"
#include "edid_lib/cta_hdmi_vsdb.h"
#include "edid_lib/cta_video_data_block.h"
#include "edid_lib/manufacturer_names.h"
#include "tools/vgnctl/edid/edid_json.h"
#include "tools/vgnctl/edid/hex_text.h"
#include "tools/vgnctl/edid/text_descriptor.h"

namespace vgnctl {
namespace {

using edid_lib::cta_data_block_t;
using edid_lib::edid_base_t;

/// What the program means by a number that is not there.
constexpr uint32_t no_number = 0xFFFFFFFF;

json_t number_or_null(uint32_t number) { return number == no_number ? json_t(nullptr) : json_t(number); }

json_t point(float x, float y) { return json_t::array({json_of(x), json_of(y)}); }

json_t chromaticity_of(const edid_base_t& base) {
  const auto color = base.chromaticity();
  return {{"red", point(color.red_x, color.red_y)},
          {"green", point(color.green_x, color.green_y)},
          {"blue", point(color.blue_x, color.blue_y)},
          {"white", point(color.white_x, color.white_y)}};
}

void add_identity(json_t& report, const edid_base_t& base) {
  const std::string id = base.manufacturer_id();
  report["manufacturer_id"] = id;
  report["manufacturer_name"] = edid_lib::manufacturer_name(id);
  report["product_code"] = base.product_code();
  report["serial_number"] = base.serial_number();
  report["week"] = base.week();
  report["year"] = base.year();
  report["version"] = base.version();
  report["revision"] = base.revision();
}

void add_features(json_t& report, const edid_base_t& base) {
  report["digital_input"] = base.digital_input();
  report["color_depth"] = base.color_depth();
  report["digital_interface"] = base.digital_interface();
  report["h_size_cm"] = base.h_size_cm();
  report["v_size_cm"] = base.v_size_cm();
  report["gamma"] = json_of(base.gamma());
  report["standby"] = base.standby();
  report["suspend"] = base.suspend();
  report["active_off"] = base.active_off();
  report["color_type"] = base.color_type();
  report["srgb_default"] = base.srgb_default();
  report["preferred_native"] = base.preferred_native();
  report["continuous_frequency"] = base.continuous_frequency();
}

json_t detailed_of(const edid_lib::det_timings_block_t& block) {
  return {{"offset", block.offset()}, {"capacity", block.capacity()}, {"modes", keys_of(block.modes())}};
}

json_t descriptors_of(const edid_base_t& base) {
  json_t list = json_t::array();
  for (const auto& block : base.descriptors()) {
    const auto text = text_of_descriptor(*block);
    list.push_back({{"offset", block->offset()},
                    {"tag", block->tag()},
                    {"name", block->name()},
                    {"text", text ? json_t(utf8_of_bytes(*text)) : json_t(nullptr)},
                    {"data", hex_text(block->bytes())}});
  }
  return list;
}

json_t base_of(const edid_base_t& base) {
  constexpr uint8_t checksum_at = 127;
  json_t report{{"data", hex_text(base.bytes())}, {"valid", base.valid()}};
  add_identity(report, base);
  add_features(report, base);
  report["chromaticity"] = chromaticity_of(base);
  report["extension_count"] = base.extension_count();
  report["checksum"] = base.checksum(checksum_at);
  report["checksum_byte"] = base.byte(checksum_at);
  report["established"] = keys_of(base.established().modes());
  report["standard_count"] = base.standard().count();
  report["standard"] = keys_of(base.standard().modes(base.revision(), true));
  report["detailed"] = detailed_of(base.detailed());
  report["descriptors"] = descriptors_of(base);
  return report;
}

void add_tags(json_t& report, const cta_data_block_t& block) {
  const auto* extended = dynamic_cast<const edid_lib::cta_extended_data_block_t*>(&block);
  const auto* vendor = dynamic_cast<const edid_lib::cta_vendor_specific_data_block_t*>(&block);
  report["tag"] = block.tag();
  report["extended_tag"] = extended != nullptr ? json_t(extended->extended_tag()) : json_t(nullptr);
  report["extended_name"] = extended != nullptr ? json_t(extended->extended_name()) : json_t(nullptr);
  report["ieee_id"] = vendor != nullptr ? number_or_null(vendor->ieee_id()) : json_t(nullptr);
}

void add_content(json_t& report, const edid_lib::cta_hdmi_vsdb_t& block) {
  const auto vics = block.hdmi_vics();
  report["modes"] = keys_of(block.modes());
  report["physical_address"] = number_or_null(block.physical_address());
  report["max_tmds_mhz"] = block.max_tmds_mhz();
  report["hdmi_vics"] = json_t::array_t(vics.begin(), vics.end());
}

json_t block_of(const cta_data_block_t& block) {
  json_t report{{"name", block.name()}};
  add_tags(report, block);
  report["size"] = block.size();
  report["valid"] = block.valid();
  report["data"] = hex_text(block.bytes());
  if (const auto* video = dynamic_cast<const edid_lib::cta_video_data_block_t*>(&block)) {
    report["modes"] = keys_of(video->modes());
  } else if (const auto* hdmi = dynamic_cast<const edid_lib::cta_hdmi_vsdb_t*>(&block)) {
    add_content(report, *hdmi);
  }
  return report;
}

json_t extension_of(const edid_lib::cta_extension_t& extension) {
  json_t blocks = json_t::array();
  for (const auto& block : extension.data_blocks()) {
    blocks.push_back(block_of(*block));
  }
  const auto* detailed = extension.detailed_timings();
  return {{"data", hex_text(extension.bytes())},
          {"valid", extension.valid()},
          {"underscan", extension.underscan()},
          {"basic_audio", extension.basic_audio()},
          {"ycc_444", extension.ycc_444()},
          {"ycc_422", extension.ycc_422()},
          {"native_count", extension.native_count()},
          {"blocks", blocks},
          {"detailed", detailed != nullptr ? detailed_of(*detailed) : json_t(nullptr)}};
}

}  // namespace

json_t info_report(const edid_lib::edid_t& edid) {
  return {{"valid", edid.valid()},
          {"base", base_of(*edid.base())},
          {"extension", edid.cta() != nullptr ? extension_of(*edid.cta()) : json_t(nullptr)}};
}

}  // namespace vgnctl
