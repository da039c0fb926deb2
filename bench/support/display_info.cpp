#include "bench/support/display_info.h"

extern "C" {
#include <libdisplay-info/cta.h>
#include <libdisplay-info/edid.h>
#include <libdisplay-info/info.h>
}

#include <memory>

namespace bench {
namespace {

struct destroyer_t {
  void operator()(di_info* info) const { di_info_destroy(info); }
};

/// A list that ends with a null; there may be none.
template <typename Item, typename Visit>
void for_each(const Item* const* list, Visit visit) {
  for (; list != nullptr && *list != nullptr; ++list) {
    visit(**list);
  }
}

template <typename Item>
std::size_t length(const Item* const* list) {
  std::size_t count = 0;
  for_each(list, [&](const Item& /*item*/) { ++count; });
  return count;
}

std::size_t established_count(const di_edid_established_timings_i_ii& bits) {
  const bool all[] = {bits.has_720x400_70hz,   bits.has_720x400_88hz,  bits.has_640x480_60hz,
                      bits.has_640x480_67hz,   bits.has_640x480_72hz,  bits.has_640x480_75hz,
                      bits.has_800x600_56hz,   bits.has_800x600_60hz,  bits.has_800x600_72hz,
                      bits.has_800x600_75hz,   bits.has_832x624_75hz,  bits.has_1024x768_87hz_interlaced,
                      bits.has_1024x768_60hz,  bits.has_1024x768_70hz, bits.has_1024x768_75hz,
                      bits.has_1280x1024_75hz, bits.has_1152x870_75hz};
  std::size_t count = 0;
  for (const bool there : all) {
    count += there ? 1 : 0;
  }
  return count;
}

std::size_t video_count(const di_cta_data_block& block) {
  std::size_t count = 0;
  if (di_cta_data_block_get_tag(&block) == DI_CTA_DATA_BLOCK_VIDEO) {
    for_each(di_cta_data_block_get_svds(&block), [&](const di_cta_svd& code) {
      const di_cta_video_format* format = di_cta_video_format_from_vic(code.vic);
      count += format != nullptr ? 1 : 0;
    });
  }
  return count;
}

std::size_t extension_count(const di_edid_ext& extension) {
  const di_edid_cta* cta = di_edid_ext_get_cta(&extension);
  if (cta == nullptr) {
    return 0;
  }
  std::size_t count = length(di_edid_cta_get_detailed_timing_defs(cta));
  for_each(di_edid_cta_get_data_blocks(cta), [&](const di_cta_data_block& block) { count += video_count(block); });
  return count;
}

}  // namespace

std::size_t walk_with_display_info(std::span<const uint8_t> edid) {
  const std::unique_ptr<di_info, destroyer_t> info(di_info_parse_edid(edid.data(), edid.size()));
  if (info == nullptr) {
    return 0;
  }
  const di_edid* base = di_info_get_edid(info.get());
  std::size_t count = length(di_edid_get_detailed_timing_defs(base)) + length(di_edid_get_standard_timings(base)) +
                      established_count(*di_edid_get_established_timings_i_ii(base));
  for_each(di_edid_get_extensions(base), [&](const di_edid_ext& extension) { count += extension_count(extension); });
  return count;
}

}  // namespace bench
