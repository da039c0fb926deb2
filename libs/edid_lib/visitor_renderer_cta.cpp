#include "edid_lib/cta_audio_data_block.h"
#include "edid_lib/cta_extended_data_blocks.h"
#include "edid_lib/cta_hdmi_vsdb.h"
#include "edid_lib/cta_video_data_block.h"
#include "edid_lib/visitor_renderer.h"

namespace edid_lib {
namespace {

constexpr uint32_t no_number = 0xFFFFFFFF;

char hex_digit(uint32_t value) { return "0123456789abcdef"[value & 15]; }

/// "1.0.0.0".
std::string physical_address_text(uint32_t address) {
  if (address == no_number) {
    return "none";
  }
  return {hex_digit(address >> 12), '.', hex_digit(address >> 8), '.',
          hex_digit(address >> 4),  '.', hex_digit(address)};
}

std::string ieee_id_text(uint32_t id) {
  if (id == no_number) {
    return "none";
  }
  std::string text = "0x";
  for (uint32_t digit = 6; digit > 0; --digit) {
    text += hex_digit(id >> 4 * (digit - 1));
  }
  return text;
}

std::string audio_text(const cta_audio_data_block_t& block, std::size_t descriptor) {
  std::string text(audio_format_text(block.format(descriptor)));
  text += ", " + std::to_string(block.channels(descriptor)) + " channels, ";
  text += sample_rates_text(block.sample_rates(descriptor));
  if (block.format(descriptor) == cta_audio_data_block_t::linear_pcm) {
    text += bit_depths_text(block.third_byte(descriptor));
  }
  return text;
}

}  // namespace

void visitor_renderer_t::start_extended(const cta_extended_data_block_t& block) {
  start(block);
  report << "  " << block.extended_name() << '\n';
}

void visitor_renderer_t::codes(std::string_view label, std::span<const uint8_t> list) {
  std::string text;
  for (const uint8_t code : list) {
    text += std::to_string(code) + " ";
  }
  line(label, text);
}

void visitor_renderer_t::visit(cta_data_block_t* block, bool forward) {
  if (block == nullptr || !forward) {
    return;
  }
  if (const auto* extended = dynamic_cast<cta_extended_data_block_t*>(block)) {
    start_extended(*extended);
  } else {
    start(*block);
  }
  if (const auto* vendor = dynamic_cast<cta_vendor_specific_data_block_t*>(block)) {
    line("IEEE id", ieee_id_text(vendor->ieee_id()));
  }
  codes("Bytes", block->bytes());
}

void visitor_renderer_t::visit(cta_video_data_block_t* block, bool forward) {
  if (block != nullptr && forward) {
    start(*block);
    modes(block->modes());
  }
}

void visitor_renderer_t::visit(cta_audio_data_block_t* block, bool forward) {
  if (block == nullptr || !forward) {
    return;
  }
  start(*block);
  for (std::size_t i = 0; i < block->count(); ++i) {
    report << "  " << audio_text(*block, i) << '\n';
  }
}

void visitor_renderer_t::deep_color(const cta_hdmi_vsdb_t& block) {
  std::string text;
  text += block.deep_color_48bit() ? "48 bit " : "";
  text += block.deep_color_36bit() ? "36 bit " : "";
  text += block.deep_color_30bit() ? "30 bit " : "";
  text += block.deep_color_ycc_444() ? "YCC 4:4:4 " : "";
  line("Deep color", text);
}

void visitor_renderer_t::visit(cta_hdmi_vsdb_t* block, bool forward) {
  if (block == nullptr || !forward) {
    return;
  }
  start(*block);
  line("Physical address", physical_address_text(block->physical_address()));
  flag("Supports AI", block->supports_ai());
  deep_color(*block);
  flag("DVI dual", block->dvi_dual());
  line("Max TMDS clock in MHz", block->max_tmds_mhz());
  flag("Latencies", block->latency_present());
  flag("Interlaced latencies", block->interlaced_latency_present());
  flag("HDMI video", block->hdmi_video_present());
  codes("HDMI VICs", block->hdmi_vics());
  modes(block->modes());
}

void visitor_renderer_t::visit(cta_hdmi_forum_vsdb_t* block, bool forward) {
  if (block == nullptr || !forward) {
    return;
  }
  start(*block);
  line("Version", block->version());
  line("Max TMDS character rate in MHz", block->max_tmds_rate());
  flag("SCDC", block->scdc_present());
  flag("Read request", block->read_request_capable());
  flag("Scrambling up to 340 MHz", block->scrambles_up_to_340_mhz());
  flag("3D OSD disparity", block->osd_disparity_3d());
  flag("4:2:0 48 bit", block->deep_color_420_48bit());
  flag("4:2:0 36 bit", block->deep_color_420_36bit());
  flag("4:2:0 30 bit", block->deep_color_420_30bit());
}

void visitor_renderer_t::visit(cta_colorimetry_exdb_t* block, bool forward) {
  if (block != nullptr && forward) {
    start_extended(*block);
    line("Colorimetry", colorimetries_text(block->colorimetries()));
    line("Metadata", block->metadata());
  }
}

void visitor_renderer_t::visit(cta_video_capability_exdb_t* block, bool forward) {
  if (block == nullptr || !forward) {
    return;
  }
  start_extended(*block);
  flag("Selectable YCC quantization", block->quantization_ycc());
  flag("Selectable RGB quantization", block->quantization_rgb());
  line("PT", text_of(block->preferred_timing()));
  line("IT", text_of(block->it_video()));
  line("CE", text_of(block->ce_video()));
}

void visitor_renderer_t::visit(cta_ycc_420_video_exdb_t* block, bool forward) {
  if (block != nullptr && forward) {
    start_extended(*block);
    codes("VICs", block->vics());
  }
}

void visitor_renderer_t::visit(cta_ycc_420_capability_exdb_t* block, bool forward) {
  if (block == nullptr || !forward) {
    return;
  }
  start_extended(*block);
  std::string entries;
  for (std::size_t i = 0; i < 8 * block->size(); ++i) {
    entries += block->contains(i) ? std::to_string(i + 1) + " " : "";
  }
  line("Entries of the video data block", block->means_all() ? "all" : entries);
}

}  // namespace edid_lib
