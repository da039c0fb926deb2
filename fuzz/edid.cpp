// The bytes of an EDID: parsing with its repairs, the walk, the list of modes and the filter chain.
#include "edid_lib/edid.h"

#include <algorithm>
#include <iterator>
#include <tuple>

#include "edid_lib/tarn_filter_resolution.h"
#include "edid_lib/test/recording_visitor.h"
#include "edid_lib/timing_lookup.h"
#include "edid_lib/visitor_modes.h"
#include "fuzz/target.h"

namespace {

using edid_lib::edid_t;
using edid_lib::vid_resolution_t;
using fuzz::require;
using modes_t = std::vector<vid_resolution_t>;

bool same_bytes(std::span<const uint8_t> a, std::span<const uint8_t> b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

void check_base(const edid_lib::edid_base_t& base) {
  constexpr uint8_t header[] = {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};
  require(base.size() == 128, "a base block has its size");
  require(same_bytes(base.bytes().first(8), header), "a base block has its header");
  require(base.version() == 1 || base.version() == 2, "the version is repaired");
  require(base.revision() >= 2 && base.revision() <= 4, "the revision is repaired");
  require(base.digital_input(), "the input is digital");
  const edid_lib::edid_base_t again(base.bytes());
  require(same_bytes(again.bytes(), base.bytes()), "what was repaired needs no repair");
}

void check_extension(const edid_lib::cta_extension_t& extension) {
  require(extension.size() == 128, "an extension has its size");
  require(extension.byte(0) == 2 && extension.byte(1) == 3, "tag and revision are repaired");
  const edid_lib::cta_extension_t again(extension.bytes());
  require(same_bytes(again.bytes(), extension.bytes()), "what was repaired needs no repair");
  std::size_t total = 0;
  for (const auto& block : extension.data_blocks()) {
    require(block->size() > 0 && block->size() <= 32, "a data block has a size that its first byte can tell");
    total += block->size();
  }
  require(total <= 124, "data blocks do not overlap");
}

/// Both passes show the same blocks, whatever their order.
void check_walk(edid_t& edid) {
  recording_visitor_t visitor;
  visitor.apply(&edid);
  require(!visitor.forward_names.empty() && visitor.forward_names.front() == "EDID", "the walk begins at the top");
  require(visitor.backward_names.back() == "EDID", "the walk ends at the top");
  std::sort(visitor.forward_names.begin(), visitor.forward_names.end());
  std::sort(visitor.backward_names.begin(), visitor.backward_names.end());
  require(visitor.forward_names == visitor.backward_names, "both passes show the same blocks");
}

/// All that tells two modes apart, without their texts, which would take most of the time.
bool is_same(const vid_resolution_t& a, const vid_resolution_t& b) {
  const auto told = [](const vid_resolution_t& mode) {
    return std::tie(mode.width, mode.height, mode.fps, mode.pixel_aspect_x, mode.pixel_aspect_y, mode.reduced_blanking,
                    mode.interlaced, mode.preferred, mode.timing, mode.type, mode.location);
  };
  return told(a) == told(b);
}

bool are_same(const modes_t& a, const modes_t& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), is_same);
}

modes_t modes_of(edid_t& edid) {
  edid_lib::visitor_modes_t visitor;
  visitor.read(&edid);
  return visitor.take_modes();
}

void check_mode(const vid_resolution_t& mode) {
  require(mode.width > 0 && mode.height > 0, "a mode has a size");
  require(mode.location != edid_lib::timing_location_t::undefined, "a mode tells where it was found");
  const vid_resolution_t parsed(mode.key());
  require(parsed == mode && parsed.interlaced == mode.interlaced, "the text of a mode parses as that mode");
  if (mode.timing.known()) {
    require(edid_lib::resolve_timing(mode).timing == mode.timing, "a mode's own timing comes first");
  }
}

/// A list is in an order that does not depend on which mode is asked first.
void check_order(const modes_t& modes) {
  for (std::size_t i = 1; i < modes.size(); ++i) {
    const auto order = modes[i - 1] <=> modes[i];
    const auto reversed = modes[i] <=> modes[i - 1];
    require((order < 0) == (reversed > 0) && (order == 0) == (reversed == 0), "the order has one direction");
    require((order == 0) == (modes[i - 1] == modes[i]), "equal modes are those that no order parts");
  }
}

/// The edges of a mode that the appliance can show, as the chain has them.
void check_accepted(const edid_lib::tarn_filter_resolution_t& filter, const vid_resolution_t& mode) {
  require(filter.allow_interlaced || !mode.interlaced, "no interlaced mode passes where none is allowed");
  require(mode <= filter.max_resolution && mode >= filter.min_resolution, "no mode passes the limits");
  require(mode.nominal_fps() > 23.4F && mode.nominal_fps() < 60.6F, "no rate passes the limits");
  if (filter.direction == edid_lib::filter_direction_t::output) {
    const auto clock = mode.timing.pixel_clock_khz;
    require(clock >= 25'000 && clock <= 600'000, "no pixel clock passes the limits");
  }
}

/// What the filter leaves is the list without what it refuses.
void check_filter(edid_t& edid, const modes_t& modes, const edid_lib::tarn_filter_resolution_t& filter) {
  modes_t expected;
  std::copy_if(modes.begin(), modes.end(), std::back_inserter(expected),
               [&](const vid_resolution_t& mode) { return filter.accepts(mode); });
  const modes_t usable = filter.modes(edid);
  require(are_same(usable, expected), "the usable modes are those that are accepted, in their order");
  for (const vid_resolution_t& mode : usable) {
    check_accepted(filter, mode);
  }
}

edid_lib::tarn_filter_resolution_t filter_for(edid_lib::filter_direction_t direction) {
  edid_lib::tarn_filter_resolution_t filter;
  filter.direction = direction;
  filter.allow_interlaced = direction == edid_lib::filter_direction_t::neither;
  filter.max_resolution = vid_resolution_t("3840x2160@60");
  filter.min_resolution = vid_resolution_t("640x480@59.94");
  filter.unsupported = {vid_resolution_t("1280x720@50")};
  return filter;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  edid_t edid(std::vector<uint8_t>(data, data + size));
  require(edid.base() != nullptr, "any bytes make a base block");
  check_base(*edid.base());
  const bool has_extension = size > 128 && data[128] == 2;
  require((edid.cta() != nullptr) == has_extension, "there is an extension where the bytes have one");
  if (has_extension) {
    check_extension(*edid.cta());
  }
  check_walk(edid);

  const modes_t modes = modes_of(edid);
  edid_t copy = edid;
  require(are_same(modes_of(copy), modes) && copy.valid() == edid.valid(), "a copy is the same EDID");
  std::for_each(modes.begin(), modes.end(), check_mode);
  check_order(modes);
  // One direction for each input, because the lists are what takes the time.
  check_filter(edid, modes, filter_for(static_cast<edid_lib::filter_direction_t>(size % 3)));
  return 0;
}
