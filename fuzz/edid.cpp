// The bytes of an EDID, and behind its two blocks the bytes that choose what is set: parsing with its repairs, the
// walk, the list of modes and its texts, the filter chain, and all that reads or writes a block.
#include "edid_lib/edid.h"

#include <algorithm>
#include <compare>
#include <utility>

#include "edid_lib/test/recording_visitor.h"
#include "fuzz/edid/support.h"
#include "fuzz/target.h"

namespace {

using edid_lib::edid_t;
using edid_lib::vid_resolution_t;
using fuzz::input_t;
using fuzz::require;
using fuzz::edid::are_same;
using fuzz::edid::modes_of;
using fuzz::edid::modes_t;
using fuzz::edid::same_bytes;

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

/// A list is in an order that does not depend on which mode is asked first.
void check_order(const modes_t& modes) {
  for (std::size_t i = 1; i < modes.size(); ++i) {
    const auto order = modes[i - 1] <=> modes[i];
    const auto reversed = modes[i] <=> modes[i - 1];
    require(std::is_lt(order) == std::is_gt(reversed) && std::is_eq(order) == std::is_eq(reversed),
            "the order has one direction");
    require(std::is_eq(order) == (modes[i - 1] == modes[i]), "equal modes are those that no order parts");
  }
}

/// Changing a copy changes nothing else.
void check_copies(edid_t& edid, const modes_t& modes) {
  edid_t copy = edid;
  require(are_same(modes_of(copy), modes) && copy.valid() == edid.valid(), "a copy is the same EDID");
  require(same_bytes(copy.bytes(), edid.bytes()) && copy.assemble() == edid.assemble(), "of the same bytes");
  edid_t other;
  other = copy;
  copy.base()->detailed().clear();
  copy.base()->reset();
  const bool had_extension = edid.cta() != nullptr;
  require(copy.ensure_cta() == copy.cta(), "an extension is made where there is none");
  require(had_extension || copy.base()->extension_count() == 1, "and counted");
  copy.cta()->reset();
  require(are_same(modes_of(edid), modes) && are_same(modes_of(other), modes), "copies are independent");
  copy = std::move(other);
  require(are_same(modes_of(copy), modes), "what is moved is the same EDID");
  copy.reset();
  require(copy.base() == nullptr && copy.cta() == nullptr && !copy.valid(), "a reset EDID is none");
}

/// Sets what can be set, as the bytes behind the two blocks choose, which are no part of the EDID; in inputs without
/// them, as the EDID's own do.
void check_setters(const edid_t& edid, input_t& input) {
  const edid_lib::edid_base_t& base = *edid.base();
  fuzz::edid::check_base_fields(base, input);
  fuzz::edid::check_descriptors(base, input);
  fuzz::edid::check_established(base.established(), input);
  fuzz::edid::check_standard(base.standard(), input);
  fuzz::edid::check_detailed(base.detailed(), input);
  fuzz::edid::check_building(input);
  const edid_lib::cta_extension_t empty;
  fuzz::edid::check_extension_fields(edid.cta() != nullptr ? *edid.cta() : empty, input);
}

void check_modes(const modes_t& modes) {
  check_order(modes);
  for (const vid_resolution_t& mode : modes) {
    fuzz::edid::check_mode_texts(mode);
    if (mode.location == edid_lib::timing_location_t::detailed_timing_descriptor) {
      fuzz::edid::check_entry(mode);
    }
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  [[maybe_unused]] static const bool once = (fuzz::edid::check_constants(), true);
  edid_t edid(std::vector<uint8_t>(data, data + size));
  require(edid.base() != nullptr, "any bytes make a base block");
  check_base(*edid.base());
  const bool has_extension = size > 128 && data[128] == 2;
  require((edid.cta() != nullptr) == has_extension, "there is an extension where the bytes have one");
  if (has_extension) {
    check_extension(*edid.cta());
  }
  check_walk(edid);

  constexpr std::size_t edid_size = 256;
  fuzz::input_t input =
      size > edid_size ? fuzz::input_t(data + edid_size, size - edid_size) : fuzz::input_t(data, size);
  const modes_t modes = modes_of(edid);
  check_modes(modes);
  check_copies(edid, modes);
  fuzz::edid::check_written(edid);
  fuzz::edid::check_filter(edid, modes, input);
  check_setters(edid, input);
  fuzz::edid::check_mode_list(modes, input);
  fuzz::edid::check_colors(modes, input);
  return 0;
}
