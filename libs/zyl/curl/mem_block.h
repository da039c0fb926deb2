#pragma once

#include <cstddef>
#include <new>
#include <string_view>
#include <vector>

namespace zyl {

/// There is no memory for a block.
class memory_exception : public std::bad_alloc {
 public:
  const char* what() const noexcept override { return "Block Memory Allocation Failed"; }
};

/// Bytes that arrive piece by piece, in one block of memory that grows with them. Not for several threads.
class mem_block {
 public:
  /// Makes room for `capacity` bytes in all. Throws `memory_exception`; the block is then as it was.
  void reserve(std::size_t capacity);

  /// Appends a copy of `bytes`, which must not lie in the block. Throws `memory_exception`; the block is then as it
  /// was.
  void append(std::string_view bytes);

  /// Forgets the bytes and keeps the memory.
  void clear() { bytes.clear(); }

  std::size_t size() const { return bytes.size(); }
  bool empty() const { return bytes.empty(); }

  /// The bytes so far; valid until the block changes.
  std::string_view view() const { return {bytes.data(), bytes.size()}; }

 private:
  std::vector<char> bytes;
};

}  // namespace zyl
