#include "edid_lib/tarn_filter_resolution.h"

#include <gtest/gtest.h>

#include "edid_lib/edid.h"
#include "edid_lib/timing_lookup.h"
#include "test_support/edid_builder.h"

using namespace edid_lib;
using test_support::data_block;
using test_support::edid_builder_t;
using keys_t = std::vector<std::string>;

namespace {

constexpr vid_timing_t ultra_hd = {594000, 3840, 4016, 4104, 4400, 2160, 2168, 2178, 2250, 5};

tarn_filter_resolution_t outputs_chain() {
  tarn_filter_resolution_t chain;
  chain.max_resolution = vid_resolution_t("3840x2160@60");
  chain.min_resolution = vid_resolution_t("640x480@59.94");
  return chain;
}

keys_t keys_of(const std::vector<vid_resolution_t>& modes) {
  keys_t keys;
  for (const vid_resolution_t& mode : modes) {
    keys.push_back(mode.key());
  }
  return keys;
}

bool accepts(const tarn_filter_resolution_t& chain, std::string_view key) {
  return chain.accepts(vid_resolution_t(key));
}

}  // namespace

TEST(TarnFilterResolution, RefusesByEachOfItsFilters) {
  const tarn_filter_resolution_t chain = outputs_chain();
  EXPECT_TRUE(accepts(chain, "1920x1080@60"));
  EXPECT_FALSE(accepts(chain, "1920x1080i@60"));
  EXPECT_FALSE(accepts(chain, "720x480@59.94 8:9"));
  EXPECT_FALSE(accepts(chain, "4096x2160@60"));
  EXPECT_FALSE(accepts(chain, "640x400@60"));
  EXPECT_FALSE(accepts(chain, "1920x1080@75"));
  EXPECT_FALSE(accepts(chain, "3840x2160@120"));
  EXPECT_TRUE(accepts(chain, "1920x1080@23.98"));
  EXPECT_TRUE(accepts(chain, "640x480@60"));
}

TEST(TarnFilterResolution, InterlacedAndOddPixelsPassWhereAllowed) {
  tarn_filter_resolution_t chain = outputs_chain();
  chain.allow_interlaced = true;
  EXPECT_TRUE(accepts(chain, "1920x1080i@60"));
  EXPECT_FALSE(accepts(chain, "720x576i@50 16:15"));
  chain.allow_non_square = true;
  EXPECT_TRUE(accepts(chain, "720x576i@50 16:15"));
}

TEST(TarnFilterResolution, InputSideRefusesWhatTheInputsCannotTake) {
  tarn_filter_resolution_t chain = outputs_chain();
  EXPECT_TRUE(accepts(chain, "720x480@60"));
  chain.direction = filter_direction_t::input;
  EXPECT_FALSE(accepts(chain, "720x480@60"));
  EXPECT_TRUE(accepts(chain, "1920x1080@60"));
}

TEST(TarnFilterResolution, OutputSideRefusesWhatTheOutputsCannotMake) {
  tarn_filter_resolution_t chain = outputs_chain();
  chain.direction = filter_direction_t::output;
  EXPECT_TRUE(chain.accepts(vid_resolution_t(ultra_hd)));
  EXPECT_FALSE(accepts(chain, "3840x2160@60"));
  EXPECT_FALSE(chain.accepts(vid_resolution_t(vid_timing_t{85500, 1366, 1436, 1579, 1792, 768, 771, 774, 798, 5})));
  EXPECT_TRUE(chain.accepts(vid_resolution_t(vid_timing_t{27000, 720, 736, 798, 858, 480, 489, 495, 525, 10})));
}

TEST(TarnFilterResolution, UnsupportedModesAreRefusedOnTheOutputSideOnly) {
  tarn_filter_resolution_t chain = outputs_chain();
  chain.unsupported.emplace_back("3840x2160@60");
  EXPECT_TRUE(chain.accepts(vid_resolution_t(ultra_hd)));
  chain.direction = filter_direction_t::output;
  EXPECT_FALSE(chain.accepts(vid_resolution_t(ultra_hd)));
}

TEST(TarnFilterResolution, FilterKeepsTheOrderOfWhatPasses) {
  std::vector<vid_resolution_t> modes;
  for (const char* key : {"1280x720@60", "1920x1080i@60", "1920x1080@60", "4096x2160@24", "640x480@60"}) {
    modes.emplace_back(std::string_view(key));
  }
  outputs_chain().filter(modes);
  EXPECT_EQ(keys_of(modes), (keys_t{"1280x720@60", "1920x1080@60", "640x480@60"}));
}

TEST(TarnFilterResolution, ModesOfADisplayAreTheUsableOnesBestFirst) {
  edid_t edid(edid_builder_t().detailed(0, ultra_hd).cta(1, {data_block(2, {97, 102, 5, 16, 3})}).build());
  EXPECT_EQ(keys_of(outputs_chain().modes(edid)), (keys_t{"3840x2160@60", "3840x2160@60", "3840x2160@59.94",
                                                          "1920x1080@60", "1920x1080@59.94", "640x480@60"}));
}

TEST(TarnFilterResolution, SquareTwinOfAModeWithOddPixelsPasses) {
  edid_t edid(edid_builder_t().byte(35, 0).cta(0, {data_block(2, {76})}).build());
  EXPECT_EQ(keys_of(outputs_chain().modes(edid)), (keys_t{"1920x1080@59.94"}));
}

TEST(TarnFilterResolution, ADisplayWithNothingUsableHasNoModes) {
  edid_t edid(edid_builder_t().byte(35, 0).cta(0, {data_block(2, {5, 102})}).build());
  EXPECT_TRUE(outputs_chain().modes(edid).empty());
  edid_t nothing;
  EXPECT_TRUE(outputs_chain().modes(nothing).empty());
}
