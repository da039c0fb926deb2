#include "edid_lib/color_filter.h"

#include <gtest/gtest.h>

using namespace edid_lib;

namespace {

constexpr color_format_t rgb = {color_standard_t::bt_709, color_encoding_t::rgb, chroma_sampling_t::yuv_444,
                                color_range_t::full, color_depth_t::bits_24};

}  // namespace

TEST(ColorFilter, AcceptsTheFormatsOfItsList) {
  const color_filter filter({color_format_t{}, rgb});
  EXPECT_TRUE(filter.accept(rgb));
  EXPECT_TRUE(filter.accept({}));
}

TEST(ColorFilter, RefusesAFormatThatDiffersInOneField) {
  const color_filter filter({color_format_t{}, rgb});
  EXPECT_FALSE(filter.accept({color_standard_t::bt_601, rgb.encoding, rgb.chroma, rgb.range, rgb.depth}));
  EXPECT_FALSE(filter.accept({rgb.colorimetry, color_encoding_t::ycc, rgb.chroma, rgb.range, rgb.depth}));
  EXPECT_FALSE(filter.accept({rgb.colorimetry, rgb.encoding, chroma_sampling_t::yuv_422, rgb.range, rgb.depth}));
  EXPECT_FALSE(filter.accept({rgb.colorimetry, rgb.encoding, rgb.chroma, color_range_t::limited, rgb.depth}));
  EXPECT_FALSE(filter.accept({rgb.colorimetry, rgb.encoding, rgb.chroma, rgb.range, color_depth_t::bits_30}));
}

TEST(ColorFilter, WithoutAListAcceptsNothing) { EXPECT_FALSE(color_filter({}).accept({})); }

TEST(ColorFilter, HasItsName) { EXPECT_EQ(color_filter({}).name(), "Tarn Video Endpoint Color Filter"); }
