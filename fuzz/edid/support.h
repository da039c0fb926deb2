#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "edid_lib/edid.h"
#include "edid_lib/tarn_filter_resolution.h"
#include "edid_lib/vid_resolution.h"
#include "fuzz/target.h"

/// What the checks of the EDID library share, and the checks, each of one field of it. `input` chooses what they set.
namespace fuzz::edid {

using edid_lib::vid_resolution_t;
using modes_t = std::vector<vid_resolution_t>;

bool same_bytes(std::span<const uint8_t> a, std::span<const uint8_t> b);
std::vector<uint8_t> copy_of(std::span<const uint8_t> bytes);

/// Whether the bytes' sum, the last one being the checksum, is 0.
bool sums_up(std::span<const uint8_t> block);

/// All that tells two modes apart, without their texts, which would take most of the time.
bool is_same(const vid_resolution_t& a, const vid_resolution_t& b);
bool are_same(const modes_t& a, const modes_t& b);

modes_t modes_of(edid_lib::edid_t& edid);

/// The blocks of class `block_t` among the data blocks, in their order.
template <typename block_t>
std::vector<block_t*> blocks_of(const edid_lib::cta_extension_t& extension) {
  std::vector<block_t*> found;
  for (const auto& block : extension.data_blocks()) {
    if (auto* one = dynamic_cast<block_t*>(block.get())) {
      found.push_back(one);
    }
  }
  return found;
}

inline bool take_flag(input_t& input) { return (input.take_byte() & 1) != 0; }

/// Four bytes, the lowest first.
uint32_t take_number(input_t& input);

std::vector<uint8_t> take_bytes(input_t& input, std::size_t count);

/// A mode of one of the tables, or one that is as strange as its bytes.
vid_resolution_t take_mode(input_t& input);

/// The setters of the base block, and what they store. The block is a copy, as in the other checks.
void check_base_fields(edid_lib::edid_base_t base, input_t& input);
void check_descriptors(const edid_lib::edid_base_t& base, input_t& input);
void check_building(input_t& input);

void check_established(edid_lib::est_timings_block_t block, input_t& input);
void check_standard(edid_lib::std_timings_block_t block, input_t& input);
void check_detailed(edid_lib::det_timings_block_t block, input_t& input);

/// What an entry that is written from a mode of an entry tells.
void check_entry(const vid_resolution_t& mode);

/// Whether all numbers of a timing fit into an entry: those of interlaced fields are doubled when they are read.
bool fits_entry(const vid_resolution_t& mode);

void check_extension_fields(edid_lib::cta_extension_t extension, input_t& input);

/// Accessors of a data block by its class; changes the block.
void check_data_block(edid_lib::cta_data_block_t& block, input_t& input);

/// The bytes that an EDID makes, and what they parse to.
void check_written(edid_lib::edid_t& edid);

/// What the chain refuses, the list that it leaves, the EDID that it leaves, and the report.
void check_filter(edid_lib::edid_t& edid, const modes_t& modes, input_t& input);

/// Texts and look-ups of modes, the records with modes, colours.
void check_mode_texts(const vid_resolution_t& mode);
void check_mode_list(const modes_t& modes, input_t& input);
void check_colors(const modes_t& modes, input_t& input);

/// What does not depend on any input: tables, enumerations, and nothing in place of a block.
void check_constants();

}  // namespace fuzz::edid
