#include "tools/vgnctl/edid/edid_json.h"

#include "edid_lib/cta_hdmi_vsdb.h"
#include "edid_lib/cta_video_data_block.h"
#include "edid_lib/visitor_modes.h"
#include "tools/vgnctl/edid/hex_text.h"

namespace vgnctl {
namespace {

using edid_lib::cta_extension_t;
using edid_lib::edid_t;
using edid_lib::vid_resolution_t;

void add_base(json_t& report, const edid_lib::edid_base_t& base) {
  report["established"] = hex_text(base.established().bytes());
  report["standard"] = hex_text(base.standard().bytes());
  report["detailed"] = hex_text(base.detailed().bytes());
}

json_t detailed_of(const cta_extension_t* extension) {
  const auto* detailed = extension != nullptr ? extension->detailed_timings() : nullptr;
  return detailed != nullptr ? json_t(hex_text(detailed->bytes())) : json_t(nullptr);
}

void add_data_blocks(json_t& report, const cta_extension_t* extension) {
  json_t video_blocks = json_t::array();
  json_t hdmi_vics = json_t::array();
  if (extension != nullptr) {
    for (const auto& block : extension->data_blocks()) {
      if (dynamic_cast<const edid_lib::cta_video_data_block_t*>(block.get()) != nullptr) {
        video_blocks.push_back(hex_text(block->bytes()));
      } else if (const auto* hdmi = dynamic_cast<const edid_lib::cta_hdmi_vsdb_t*>(block.get())) {
        const auto vics = hdmi->hdmi_vics();
        hdmi_vics.push_back(json_t::array_t(vics.begin(), vics.end()));
      }
    }
  }
  report["video_blocks"] = video_blocks;
  report["hdmi_vics"] = hdmi_vics;
}

}  // namespace

std::vector<vid_resolution_t> modes_of(edid_t& edid) {
  edid_lib::visitor_modes_t visitor;
  visitor.read(&edid);
  return visitor.take_modes();
}

json_t modes_report(edid_t& edid) { return {{"valid", edid.valid()}, {"modes", json_of(modes_of(edid))}}; }

json_t usable_report(edid_t& edid, const edid_lib::tarn_filter_resolution_t& filter) {
  json_t usable = json_t::array();
  json_t refused = json_t::array();
  const auto modes = modes_of(edid);
  for (std::size_t i = 0; i < modes.size(); ++i) {
    const std::string_view refusal = filter.refused_by(modes[i]);
    if (refusal.empty()) {
      usable.push_back(json_of(modes[i]));
    } else {
      refused.push_back({{"index", i}, {"key", modes[i].key()}, {"filter", refusal}});
    }
  }
  return {{"valid", edid.valid()}, {"modes", usable}, {"refused", refused}};
}

json_t rewrite_report(edid_t& filtered) {
  json_t report = modes_report(filtered);
  const cta_extension_t* extension = filtered.cta();
  report["native_count"] = extension != nullptr ? extension->native_count() : 0;
  add_base(report, *filtered.base());
  report["extension_detailed"] = detailed_of(extension);
  add_data_blocks(report, extension);
  report["data"] = hex_text(filtered.assemble());
  return report;
}

}  // namespace vgnctl
