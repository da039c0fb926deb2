#pragma once

#include <algorithm>
#include <utility>
#include <vector>

#include "edid_lib/color_format.h"
#include "edid_lib/filter.h"

namespace edid_lib {

/// Refuses colour formats that are not, in every field, in a list.
class color_filter final : public filter<color_format_t> {
 public:
  explicit color_filter(std::vector<color_format_t> usable) : supported(std::move(usable)) {}
  bool accept(const color_format_t& format) const override {
    return std::find(supported.begin(), supported.end(), format) != supported.end();
  }
  std::string_view name() const override { return "Tarn Video Endpoint Color Filter"; }

 private:
  std::vector<color_format_t> supported;
};

}  // namespace edid_lib
