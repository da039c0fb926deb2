#pragma once

#include <memory>
#include <vector>

#include "edid_lib/cta_extension.h"
#include "edid_lib/edid_base.h"
#include "edid_lib/edid_block.h"

namespace edid_lib {

/// An EDID: its base block and, if the block behind it is one, its CTA extension. Parsing repairs and never refuses,
/// any number of bytes will do. Further and other extensions are dropped. Its own bytes are those that it was made
/// from, whatever becomes of the parts. Copies are independent of each other.
class edid_t final : public edid_block_t {
 public:
  /// No bytes, no base block, no extension.
  edid_t() = default;
  explicit edid_t(std::vector<uint8_t> edid_bytes);
  ~edid_t() override = default;

  edid_t(const edid_t& other);
  edid_t& operator=(const edid_t& other);
  edid_t(edid_t&&) = default;
  edid_t& operator=(edid_t&&) = default;

  /// The parts, owned by this object; null where there is none.
  edid_base_t* base() const { return base_block.get(); }
  cta_extension_t* cta() const { return extension.get(); }

  /// The CTA extension, made empty and told in the base block if there was none. Null without a base block.
  cta_extension_t* ensure_cta();

  /// Back to no bytes and no parts.
  void reset() override;

  /// Whether there is a base block and all there is, is valid.
  bool valid() const override;
  std::string_view name() const override { return "EDID"; }
  void accept(visitor_t* visitor, bool forward) override;

  /// The bytes of the EDID that the parts make: one or two blocks of 128, with the number of extensions and the
  /// checksums right. None without a base block.
  std::vector<uint8_t> assemble() const;

 private:
  std::unique_ptr<edid_base_t> base_block;
  std::unique_ptr<cta_extension_t> extension;
};

}  // namespace edid_lib
