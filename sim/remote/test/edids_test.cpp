#include "sim/remote/edids.h"

#include <gtest/gtest.h>

#include <numeric>
#include <string>
#include <vector>

#include "edid_lib/edid.h"
#include "edid_lib/tarn_filter_resolution.h"

namespace {

std::vector<std::string> usable_modes(const sim::edid_bytes_t& bytes) {
  edid_lib::tarn_filter_resolution_t filter;
  filter.max_resolution = edid_lib::vid_resolution_t("3840x2160@60");
  filter.min_resolution = edid_lib::vid_resolution_t("640x480@59.94");
  edid_lib::edid_t edid(bytes);
  std::vector<std::string> keys;
  for (const auto& mode : filter.modes(edid)) {
    keys.push_back(mode.key());
  }
  return keys;
}

void expect_well_formed(const sim::edid_bytes_t& bytes, std::size_t size) {
  ASSERT_EQ(bytes.size(), size);
  EXPECT_EQ(bytes[126], size / 128 - 1);
  for (std::size_t block = 0; block < size; block += 128) {
    const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(block);
    EXPECT_EQ(std::accumulate(begin, begin + 128, 0U) % 256, 0U) << "block at " << block;
  }
}

}  // namespace

TEST(Edids, AreWellFormed) {
  expect_well_formed(sim::uhd_display_edid(), 256);
  expect_well_formed(sim::full_hd_display_edid(), 128);
  expect_well_formed(sim::unusable_display_edid(), 128);
}

TEST(Edids, TheUhdDisplayPrefersItsNativeMode) {
  const auto modes = usable_modes(sim::uhd_display_edid());
  ASSERT_GT(modes.size(), 3U);
  EXPECT_EQ(modes.front(), "3840x2160@60");
}

TEST(Edids, TheFullHdDisplayHasOneMode) {
  EXPECT_EQ(usable_modes(sim::full_hd_display_edid()), std::vector<std::string>{"1920x1080@60"});
}

TEST(Edids, TheUnusableDisplayHasNone) { EXPECT_TRUE(usable_modes(sim::unusable_display_edid()).empty()); }
