#pragma once

#include <cstddef>
#include <span>

#include "engine_lib/videng_status_block.h"

namespace videng {

/// A status block's file mapped into this process, read-write and shared. Owns the mapping, not the descriptor.
class status_mapping_t {
 public:
  /// Nothing mapped.
  status_mapping_t() = default;

  /// Maps the whole file of `length` bytes, at least a status block's; tests with `mapped` whether that worked.
  status_mapping_t(int fd, std::size_t length);

  ~status_mapping_t();

  status_mapping_t(const status_mapping_t&) = delete;
  status_mapping_t& operator=(const status_mapping_t&) = delete;
  status_mapping_t(status_mapping_t&& other) noexcept;
  status_mapping_t& operator=(status_mapping_t&& other) noexcept;

  bool mapped() const { return !bytes.empty(); }

  /// The view of what is mapped; valid as long as this object.
  status_block_t block() const { return status_block_t(bytes); }

 private:
  std::span<std::byte> bytes;
};

}  // namespace videng
