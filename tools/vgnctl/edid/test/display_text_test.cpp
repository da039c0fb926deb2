#include "tools/vgnctl/edid/display_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "edid_lib/timing_lookup.h"
#include "test_support/edid_builder.h"

using edid_lib::cta_timing;
using edid_lib::edid_t;
using edid_lib::vid_resolution_t;
using test_support::data_block;
using test_support::edid_builder_t;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;
using vgnctl::display_lines;

namespace {

std::string lines_of(std::vector<uint8_t> bytes) {
  edid_t edid(std::move(bytes));
  return display_lines(edid);
}

}  // namespace

TEST(DisplayLines, TellWhoseDisplayItIs) {
  EXPECT_THAT(lines_of(edid_builder_t()
                           .byte(8, 0x04)
                           .byte(9, 0x72)
                           .byte(10, 0xB1)
                           .byte(11, 0x06)
                           .byte(12, 7)
                           .byte(16, 5)
                           .byte(17, 23)
                           .byte(21, 60)
                           .byte(22, 34)
                           .byte(23, 120)
                           .descriptor(90, 0xFC, "TV\xFF")
                           .build()),
              AllOf(StartsWith("  Valid               yes\n"),
                    HasSubstr("Maker               Acer (ACR), product 0x6b1, serial number 7\n"),
                    HasSubstr("Made                2013, week 5\n"),
                    HasSubstr("Base block          EDID 1.3, 0 extensions, checksum right\n"),
                    HasSubstr("Picture             60 cm x 34 cm, gamma 2.2\n"),
                    HasSubstr("Text                \"TV.\", Base Monitor Name Descriptor\n")));
}

TEST(DisplayLines, TellTheModesOfTheBlocksAndHowManyAreUsable) {
  EXPECT_THAT(
      lines_of(edid_builder_t()
                   .detailed(0, cta_timing(vid_resolution_t("1920x1080@60")))
                   .cta(0x41, {data_block(2, {4, 5}), data_block(3, {0x03, 0x0C, 0x00, 0, 0, 0, 60}),
                               data_block(7, {5, 0xC0, 0}), data_block(3, {1, 2})})
                   .build()),
      AllOf(StartsWith("  Valid               no\n"), HasSubstr("  Detailed            1920x1080@60\n"),
            HasSubstr("  Standard            none\n"), HasSubstr("  Established         640x480@60\n"),
            HasSubstr("  CTA extension       native timings: 1, checksum right, basic audio\n"),
            HasSubstr("    CTA Video Data Block: 1280x720@60, 1280x720@59.94, 1920x1080i@60, 1920x1080i@29.97\n"),
            HasSubstr("    CTA HDMI Vendor-Specific Data Block: none; greatest TMDS clock 300 MHz\n"),
            HasSubstr("    CTA Colorimetry Block: e305c000\n"),
            HasSubstr("    CTA Vendor Specific Data Block (not valid): 620102\n"),
            HasSubstr("  Usable              4 of 6 modes, the first is 1920x1080@60\n")));
}

TEST(DisplayLines, TellThatChecksumsAreWrong) {
  auto bytes = edid_builder_t().cta(0, {}, {cta_timing(vid_resolution_t("1280x720@60"))}).build();
  ++bytes[127];
  ++bytes[255];
  EXPECT_THAT(lines_of(bytes),
              AllOf(HasSubstr("EDID 1.3, 1 extension, checksum wrong\n"),
                    HasSubstr("native timings: 0, checksum wrong"), HasSubstr("    Detailed Timings: 1280x720@60\n")));
}

TEST(DisplayLines, TellThatABlockWasRepairedAndJudgeTheChecksumThatTheDisplayHas) {
  EXPECT_THAT(lines_of(edid_builder_t().byte(24, 0).cta(0, {}).byte(129, 1).build()),
              AllOf(HasSubstr("EDID 1.3, 1 extension, checksum right, repaired\n"),
                    HasSubstr("native timings: 0, checksum right, repaired\n")));
  auto cut = edid_builder_t().cta(0, {}).build();
  cut.resize(140);
  EXPECT_THAT(lines_of(cut), AllOf(HasSubstr("EDID 1.3, 1 extension, checksum right\n"),
                                   HasSubstr("native timings: 0, cut short, repaired\n")));
  EXPECT_THAT(lines_of({}), HasSubstr("EDID 1.3, 0 extensions, cut short, repaired\n"));
}

TEST(DisplayLines, TellWhyThereIsNoExtension) {
  EXPECT_THAT(lines_of(edid_builder_t().build()), HasSubstr("CTA extension       none\n"));
  EXPECT_THAT(lines_of(edid_builder_t().byte(126, 1).build()),
              HasSubstr("CTA extension       none, the first extension is another one or is missing\n"));
  EXPECT_THAT(lines_of({}), HasSubstr("Usable              0 of 0 modes\n"));
}
