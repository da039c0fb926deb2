#include "edid_lib/color_filter.h"

#include <gtest/gtest.h>

using namespace edid_lib;

namespace {

constexpr color_format_t rgb = {color_standard_t::bt_709, color_encoding_t::rgb, chroma_sampling_t::yuv_444,
                                color_range_t::full, color_depth_t::bits_24};

}  // namespace

TEST(ColorFilter, AcceptsTheFormatsOfItsListInEveryField) {
  const color_filter filter({color_format_t{}, rgb});
  EXPECT_TRUE(filter.accept(rgb));
  EXPECT_TRUE(filter.accept({}));
  color_format_t other = rgb;
  other.colorimetry = color_standard_t::bt_601;
  EXPECT_FALSE(filter.accept(other));
  other = rgb;
  other.depth = color_depth_t::bits_30;
  EXPECT_FALSE(filter.accept(other));
}

TEST(ColorFilter, WithoutAListAcceptsNothing) { EXPECT_FALSE(color_filter({}).accept({})); }

TEST(ColorFilter, HasItsName) { EXPECT_EQ(color_filter({}).name(), "Tarn Video Endpoint Color Filter"); }
