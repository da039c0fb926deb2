#include "fuzz/edid/support.h"

namespace fuzz::edid {
namespace {

using edid_lib::cta_data_block_t;
using edid_lib::cta_extension_t;

void check_flags(cta_extension_t& extension, input_t& input) {
  const uint8_t wanted = input.take_byte();
  extension.set_underscan((wanted & 0x80) != 0);
  extension.set_basic_audio((wanted & 0x40) != 0);
  extension.set_ycc_444((wanted & 0x20) != 0);
  extension.set_ycc_422((wanted & 0x10) != 0);
  extension.set_native_count(wanted & 0x0F);
  const int stored = (extension.underscan() ? 0x80 : 0) | (extension.basic_audio() ? 0x40 : 0) |
                     (extension.ycc_444() ? 0x20 : 0) | (extension.ycc_422() ? 0x10 : 0) | extension.native_count();
  require(stored == wanted && extension.byte(3) == wanted, "flags and native count are one byte");
}

/// The first block of each tag is the one that is found.
void check_find(const cta_extension_t& extension) {
  for (const auto& block : extension.data_blocks()) {
    require(extension.has_block(block->tag()), "every block is found by its tag");
    const auto* found = extension.find_block(block->tag());
    require(found->tag() == block->tag(), "and has the tag that was asked for");
    const auto* extended = dynamic_cast<edid_lib::cta_extended_data_block_t*>(block.get());
    require(extended == nullptr || extension.has_extended_block(extended->extended_tag()), "by its extended tag, too");
  }
  require(!extension.has_block(0) && !extension.has_block(6), "blocks without meaning are dropped");
  require(!extension.has_extended_block(99) && extension.find_extended_block(99) == nullptr, "and so are these");
}

void check_offset(cta_extension_t& extension) {
  std::size_t expected = extension.data_blocks().empty() && extension.detailed_timings() == nullptr ? 0 : 4;
  for (const auto& block : extension.data_blocks()) {
    expected += cta_data_block_t::told_size(block->byte(0));
  }
  extension.refresh_offset();
  require(extension.detailed_offset() == std::min<std::size_t>(expected, 255), "the offset is told by the blocks");
  const auto bytes = extension.assemble();
  require(bytes.size() == 128 && sums_up(bytes), "an extension is whole with whatever is in it");
}

void check_timings(cta_extension_t& extension, input_t& input) {
  const bool had = extension.detailed_timings() != nullptr;
  const std::size_t offset = extension.detailed_offset();
  auto& timings = extension.detailed();
  require(extension.detailed_timings() == &timings, "timings that were asked for are there");
  require(had || timings.offset() == offset + 128, "new ones have their offset in the EDID");
  require(had || timings.capacity() == (offset < 127 ? (127 - offset) / 18 : 0), "and the room that is left");
  require(had || timings.size() == 0 || timings.byte(0) == 1, "and are padding");
  if (!had) {
    timings.clear();
    require(timings.count() == 0, "which can be cleared for modes");
  }
  timings.add(take_mode(input));
}

void check_added(cta_extension_t& extension, input_t& input) {
  const std::size_t before = extension.data_blocks().size();
  extension.add_block(nullptr);
  require(extension.data_blocks().size() == before, "no block is none");
  auto block = edid_lib::make_cta_data_block(take_bytes(input, input.take_byte() % 34));
  const bool made = block != nullptr;
  if (made) {
    check_data_block(*block, input);
  }
  extension.add_block(std::move(block));
  require(extension.data_blocks().size() == before + (made ? 1 : 0), "a block is added");
}

}  // namespace

void check_extension_fields(cta_extension_t extension, input_t& input) {
  check_find(extension);
  const cta_extension_t copy = extension;
  for (const auto& block : extension.data_blocks()) {
    check_data_block(*block, input);
  }
  extension = copy;
  check_added(extension, input);
  check_timings(extension, input);
  check_flags(extension, input);
  check_offset(extension);
  extension.reset();
  require(extension.data_blocks().empty() && extension.detailed_timings() == nullptr, "a reset extension has no parts");
  require(extension.size() == 0 && !extension.valid() && extension.assemble()[2] == 0, "nor bytes");
}

}  // namespace fuzz::edid
