#include "edid_lib/edid.h"

#include <utility>

#include "edid_lib/visitor.h"

namespace edid_lib {
namespace {

constexpr std::size_t base_size = 128;

void accept_part(edid_block_t* part, visitor_t* visitor, bool forward) {
  if (part != nullptr) {
    part->accept(visitor, forward);
  }
}

}  // namespace

edid_t::edid_t(std::vector<uint8_t> edid_bytes) {
  data = std::move(edid_bytes);
  base_block = std::make_unique<edid_base_t>(data);
  if (data.size() > base_size && data[base_size] == cta_extension_t::own_tag) {
    extension = std::make_unique<cta_extension_t>(bytes().subspan(base_size));
  }
}

edid_t::edid_t(const edid_t& other)
    : edid_block_t(other),
      base_block(other.base_block ? std::make_unique<edid_base_t>(*other.base_block) : nullptr),
      extension(other.extension ? std::make_unique<cta_extension_t>(*other.extension) : nullptr) {}

edid_t& edid_t::operator=(const edid_t& other) {
  if (this != &other) {
    *this = edid_t(other);
  }
  return *this;
}

cta_extension_t* edid_t::ensure_cta() {
  if (base_block != nullptr && extension == nullptr) {
    extension = std::make_unique<cta_extension_t>();
    base_block->set_extension_count(1);
  }
  return extension.get();
}

void edid_t::reset() { *this = edid_t(); }

bool edid_t::valid() const {
  return base_block != nullptr && base_block->valid() && (extension == nullptr || extension->valid());
}

void edid_t::accept(visitor_t* visitor, bool forward) {
  if (visitor == nullptr) {
    return;
  }
  if (forward) {
    visitor->visit(this, forward);
    accept_part(base_block.get(), visitor, forward);
    accept_part(extension.get(), visitor, forward);
    return;
  }
  accept_part(extension.get(), visitor, forward);
  accept_part(base_block.get(), visitor, forward);
  visitor->visit(this, forward);
}

std::vector<uint8_t> edid_t::assemble() const {
  if (base_block == nullptr) {
    return {};
  }
  std::vector<uint8_t> whole = base_block->assemble(extension != nullptr ? 1 : 0);
  if (extension != nullptr) {
    const std::vector<uint8_t> second = extension->assemble();
    whole.insert(whole.end(), second.begin(), second.end());
  }
  return whole;
}

}  // namespace edid_lib
