#include "zyl/curl/mem_block.h"

#include <stdexcept>

namespace zyl {
namespace {

/// Runs what allocates. However the library says that there is no room, callers hear one exception.
template <typename Call>
void allocate(const Call& call) {
  try {
    call();
  } catch (const std::bad_alloc&) {
    throw memory_exception();
  } catch (const std::length_error&) {
    throw memory_exception();
  }
}

}  // namespace

void mem_block::reserve(std::size_t capacity) {
  allocate([&] { bytes.reserve(capacity); });
}

void mem_block::append(std::string_view added) {
  allocate([&] { bytes.insert(bytes.end(), added.begin(), added.end()); });
}

}  // namespace zyl
