#pragma once

#include <cstddef>

#include "engine_lib/videng_status_mapping.h"
#include "sim/descriptor.h"

namespace sim {

/// A file in memory of this size, as a process hands it to another. Throws `std::system_error`.
descriptor_t make_shared_memory(std::size_t size);

/// The status block of one run of the engine, filled as an engine does before anybody asks for it: which decoder is of
/// which kind, and the names of its outputs.
///
/// Index and instance of the decoders that play splashes differ, and so must whoever confuses them.
class engine_block_t {
 public:
  /// Throws `std::system_error` if there is no memory.
  engine_block_t();

  /// Still owned here.
  int descriptor() const { return memory.get(); }

  videng::status_block_t view() const { return mapping.block(); }

 private:
  descriptor_t memory;
  videng::status_mapping_t mapping;
};

}  // namespace sim
