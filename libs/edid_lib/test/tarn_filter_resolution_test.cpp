#include "edid_lib/tarn_filter_resolution.h"

#include <gtest/gtest.h>

#include "edid_lib/edid.h"
#include "edid_lib/timing_lookup.h"
#include "edid_lib/visitor_modes.h"
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

TEST(TarnFilterResolution, TellsTheFirstFilterThatRefuses) {
  tarn_filter_resolution_t chain = outputs_chain();
  const auto refused_by = [&chain](std::string_view key) { return chain.refused_by(vid_resolution_t(key)); };
  EXPECT_EQ(refused_by("1920x1080@60"), "");
  EXPECT_EQ(refused_by("720x576i@50 16:15"), "Interlaced Filter");
  EXPECT_EQ(refused_by("4096x2160@120 8:9"), "Non Square Pixel Filter");
  EXPECT_EQ(refused_by("4096x2160@120"), "Max Resolution Filter");
  EXPECT_EQ(refused_by("320x240@75"), "Min Resolution Filter");
  EXPECT_EQ(refused_by("1920x1080@75"), "Max FPS Filter");
  chain.direction = filter_direction_t::input;
  EXPECT_EQ(refused_by("720x480@75"), "Tarn Video Endpoint HW Input Filter");
  chain.direction = filter_direction_t::output;
  chain.unsupported = {vid_resolution_t("1920x1080@60")};
  EXPECT_EQ(refused_by("1920x1080@60"), "Tarn Video Endpoint HW Output Filter");
  EXPECT_EQ(chain.refused_by(vid_resolution_t(cta_timing(vid_resolution_t("1920x1080@60")))),
            "Tarn Video Endpoint Unsupported Resolutions Filter");
}

TEST(TarnFilterResolution, FilteredEdidListsWhatPasses) {
  edid_t edid(edid_builder_t()
                  .detailed(0, ultra_hd)
                  .standard(0, 0xD1, 0xCF)
                  .cta(1, {data_block(2, {16, 5, 3, 101, 31})})
                  .build());
  const tarn_filter_resolution_t chain = outputs_chain();
  const keys_t usable = keys_of(chain.modes(edid));
  edid_t filtered = chain.filtered_edid(edid);
  EXPECT_TRUE(filtered.valid());
  EXPECT_EQ(keys_of(chain.modes(filtered)), usable);
  visitor_modes_t reader;
  reader.read(&filtered);
  EXPECT_EQ(keys_of(reader.modes()), usable);
  EXPECT_EQ(filtered.base()->standard().count(), 0U);
}

TEST(TarnFilterResolution, FilteredEdidLeavesTheSourceAsItIs) {
  const auto bytes = edid_builder_t().detailed(0, ultra_hd).cta(1, {data_block(2, {16, 5})}).build();
  const edid_t edid(bytes);
  outputs_chain().filtered_edid(edid);
  EXPECT_EQ(edid.assemble(), bytes);
}

TEST(TarnFilterResolution, FilteredEdidWithoutAnyUsableModeHas640x480InEveryBlock) {
  tarn_filter_resolution_t chain = outputs_chain();
  chain.max_resolution = vid_resolution_t("320x240@60");
  const edid_t filtered =
      chain.filtered_edid(edid_t(edid_builder_t().detailed(0, ultra_hd).cta(1, {data_block(2, {16, 31})}).build()));
  EXPECT_TRUE(filtered.valid());
  EXPECT_EQ(keys_of(filtered.base()->established().modes()), (keys_t{"640x480@60"}));
  EXPECT_EQ(keys_of(filtered.base()->standard().modes(3, true)), (keys_t{"640x480@60"}));
  EXPECT_EQ(keys_of(filtered.base()->detailed().modes()), (keys_t{"640x480@59.94"}));
  ASSERT_EQ(filtered.cta()->find_block(2)->size(), 2U);
  EXPECT_EQ(filtered.cta()->find_block(2)->byte(1), 1);
}

TEST(TarnFilterResolution, AnInvalidExtensionStillMakesTheFilteredEdidInvalid) {
  const auto forum_of_version_2 = data_block(3, {0xD8, 0x5D, 0xC4, 2, 0, 0});
  EXPECT_FALSE(outputs_chain().filtered_edid(edid_t(edid_builder_t().cta(1, {forum_of_version_2}).build())).valid());
}

TEST(TarnFilterResolution, FilteredEdidOfNoEdidIsNone) {
  EXPECT_EQ(outputs_chain().filtered_edid(edid_t()).base(), nullptr);
}

TEST(TarnFilterResolution, ReportTellsWhatBecomesOfEachMode) {
  edid_t edid(edid_builder_t().detailed(0, ultra_hd).cta(1, {data_block(2, {16, 5})}).build());
  const std::string report = outputs_chain().report(edid);
  EXPECT_EQ(report.find("EDID Base Block\n"), 0U);
  EXPECT_NE(report.find("CTA Video Data Block\n"), std::string::npos);
  const auto verdict = report.substr(report.find("\nModes\n"));
  EXPECT_EQ(verdict,
            "\nModes\n"
            "  3840x2160p60 (preferred): accepted\n"
            "  1920x1080p60 (preferred): accepted\n"
            "  1920x1080p59.94 (preferred): accepted\n"
            "  1920x1080i60: refused by Interlaced Filter\n"
            "  1920x1080i29.97: refused by Interlaced Filter\n"
            "  640x480p60: accepted\n");
}

TEST(TarnFilterResolution, ReasonsHaveTheirTexts) {
  const std::string_view texts[] = {"No Format Detected",         "Interlaced Video Format",
                                    "Unsupported Pixel Size",     "Below Min Supported Format",
                                    "Above Max Supported Format", "Below Min Supported FPS",
                                    "Above Max Supported FPS",    "Not Supported on Hardware",
                                    "Unsupported Color Encoding", ""};
  for (uint32_t reason = 0; reason < std::size(texts); ++reason) {
    EXPECT_EQ(tarn_filter_resolution_t::reason_text(refusal_reason_t{reason}), texts[reason]);
  }
  EXPECT_EQ(tarn_filter_resolution_t::reason_text(refusal_reason_t{0xFFFFFFFF}), "");
}

TEST(TarnFilterResolution, TheOutputsChainTakesSquareProgressiveModesUpTo4K60) {
  const tarn_filter_resolution_t chain = output_connection_filter();
  EXPECT_FALSE(chain.allow_interlaced);
  EXPECT_FALSE(chain.allow_non_square);
  EXPECT_EQ(chain.max_resolution.key(), "3840x2160@60");
  EXPECT_EQ(chain.min_resolution.key(), "640x480@59.94");
  EXPECT_TRUE(chain.unsupported.empty());
  EXPECT_EQ(chain.direction, filter_direction_t::neither);
}

TEST(TarnFilterResolution, WithoutLimitsNoModeOfASizePasses) {
  const tarn_filter_resolution_t filter;
  EXPECT_EQ(filter.refused_by(vid_resolution_t("640x480@60")), "Max Resolution Filter");
  EXPECT_EQ(filter.refused_by(vid_resolution_t("1x1@24")), "Max Resolution Filter");
}
