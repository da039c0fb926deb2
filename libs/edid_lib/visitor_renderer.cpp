#include "edid_lib/visitor_renderer.h"

#include <charconv>
#include <iterator>

#include "edid_lib/edid.h"
#include "edid_lib/manufacturer_names.h"

namespace edid_lib {
namespace {

std::string hex(uint32_t value) {
  char text[16];
  const auto result = std::to_chars(std::begin(text), std::end(text), value, 16);
  return "0x" + std::string(text, result.ptr);
}

std::string manufacturer_text(const edid_base_t& base) {
  const std::string id = base.manufacturer_id();
  const std::string_view name = manufacturer_name(id);
  return name == id ? id : id + " (" + std::string(name) + ")";
}

std::string made_text(const edid_base_t& base) {
  const std::string year = std::to_string(base.year());
  return base.week() == 0 ? year : "week " + std::to_string(base.week()) + " of " + year;
}

std::string features_text(const edid_base_t& base) {
  std::string text;
  text += base.standby() ? "standby " : "";
  text += base.suspend() ? "suspend " : "";
  text += base.active_off() ? "active-off " : "";
  text += base.srgb_default() ? "sRGB " : "";
  text += base.preferred_native() ? "preferred-native " : "";
  text += base.continuous_frequency() ? "continuous-frequency " : "";
  return text;
}

std::string chromaticity_text(const edid_base_t& base) {
  std::ostringstream out;
  out << base.chromaticity();
  return out.str();
}

/// Bytes from a display, made fit for a line of text.
std::string printable(std::string text) {
  for (char& one : text) {
    one = one >= ' ' && one <= '~' ? one : '.';
  }
  return text;
}

}  // namespace

void visitor_renderer_t::read(edid_t* edid) {
  report.str("");
  apply(edid);
}

void visitor_renderer_t::write(edid_t* edid) { read(edid); }

void visitor_renderer_t::start(const edid_block_t& block) { report << block.name() << '\n'; }

void visitor_renderer_t::line(std::string_view label, std::string_view value) {
  report << "  " << label << ": " << value << '\n';
}

void visitor_renderer_t::line(std::string_view label, uint32_t value) { line(label, std::to_string(value)); }

void visitor_renderer_t::modes(const std::vector<vid_resolution_t>& list) {
  for (const vid_resolution_t& mode : list) {
    report << "  " << mode.to_string() << '\n';
  }
}

void visitor_renderer_t::dump(const edid_block_t& block) {
  constexpr uint8_t checksum_at = 127;
  const uint8_t right = block.checksum(checksum_at);
  const uint8_t told = block.byte(checksum_at);
  line("Checksum", hex(right) + (right == told ? ", byte 127 agrees" : ", byte 127 is " + hex(told)));
  report << block;
}

void visitor_renderer_t::visit(edid_base_t* base, bool forward) {
  if (base == nullptr || !forward) {
    return;
  }
  reduced_first = base->digital_input();
  revision = base->revision();
  start(*base);
  line("Manufacturer", manufacturer_text(*base));
  line("Product code", hex(base->product_code()));
  line("Serial number", base->serial_number_text());
  line("Made", made_text(*base));
  line("Version", std::to_string(base->version()) + "." + std::to_string(base->revision()));
  flag("Digital input", base->digital_input());
  line("Color depth", base->color_depth());
  line("Digital interface", base->digital_interface());
  line("Size", std::to_string(base->h_size_cm()) + " cm x " + std::to_string(base->v_size_cm()) + " cm");
  line("Features", features_text(*base));
  line("Color type", base->color_type());
  line("Chromaticity", chromaticity_text(*base));
  line("Extensions", base->extension_count());
  dump(*base);
}

void visitor_renderer_t::visit(est_timings_block_t* block, bool forward) {
  if (block != nullptr && forward) {
    start(*block);
    modes(block->modes());
  }
}

void visitor_renderer_t::visit(std_timings_block_t* block, bool forward) {
  if (block != nullptr && forward) {
    start(*block);
    line("Codes in use", static_cast<uint32_t>(block->count()));
    modes(block->modes(revision, reduced_first));
  }
}

void visitor_renderer_t::visit(det_timings_block_t* block, bool forward) {
  if (block != nullptr && forward) {
    start(*block);
    line("Offset", block->offset());
    line("Capacity", block->capacity());
    modes(block->modes());
  }
}

void visitor_renderer_t::visit(base_descriptor_block_t* block, bool forward) {
  if (block != nullptr && forward) {
    start(*block);
    line("Offset", block->offset());
    line("Tag", hex(block->tag()));
    codes("Bytes", block->bytes());
  }
}

void visitor_renderer_t::text_of_descriptor(const base_descriptor_block_t& block, const std::string& text) {
  start(block);
  line("Offset", block.offset());
  line("Text", printable(text));
}

void visitor_renderer_t::visit(monitor_name_base_block_t* block, bool forward) {
  if (block != nullptr && forward) {
    text_of_descriptor(*block, block->text());
  }
}

void visitor_renderer_t::visit(monitor_serial_base_block_t* block, bool forward) {
  if (block != nullptr && forward) {
    text_of_descriptor(*block, block->text());
  }
}

void visitor_renderer_t::visit(ascii_string_base_block_t* block, bool forward) {
  if (block != nullptr && forward) {
    text_of_descriptor(*block, block->text());
  }
}

void visitor_renderer_t::visit(cta_extension_t* extension, bool forward) {
  if (extension == nullptr || !forward) {
    return;
  }
  start(*extension);
  line("Offset of detailed timings", extension->detailed_offset());
  flag("Underscan", extension->underscan());
  flag("Basic audio", extension->basic_audio());
  flag("YCC 4:4:4", extension->ycc_444());
  flag("YCC 4:2:2", extension->ycc_422());
  line("Native detailed timings", extension->native_count());
  dump(*extension);
}

}  // namespace edid_lib
