#include "edid_lib/visitor_renderer.h"

#include <gtest/gtest.h>

#include "edid_lib/edid.h"
#include "test_support/edid_builder.h"

using namespace edid_lib;
using test_support::data_block;
using test_support::edid_builder_t;

namespace {

constexpr edid_lib::vid_timing_t full_hd = {148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5};
constexpr edid_lib::vid_timing_t hd = {74250, 1280, 1390, 1430, 1650, 720, 725, 730, 750, 5};

std::string report_of(const std::vector<uint8_t>& bytes) {
  edid_t edid(bytes);
  visitor_renderer_t renderer;
  renderer.read(&edid);
  return renderer.text();
}

std::string report_of_blocks(std::vector<std::vector<uint8_t>> blocks) {
  return report_of(edid_builder_t().cta(0, std::move(blocks)).build());
}

std::size_t count_of(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

void expect_lines(const std::string& text, std::initializer_list<const char*> lines) {
  for (const char* line : lines) {
    EXPECT_EQ(count_of("\n" + text, "\n" + std::string(line) + "\n"), 1U) << line << " in\n" << text;
  }
}

template <typename... Blocks>
void visit_nothing(visitor_t& visitor, bool forward) {
  (visitor.visit(static_cast<Blocks*>(nullptr), forward), ...);
}

}  // namespace

TEST(VisitorRenderer, TellsTheFieldsOfTheBaseBlock) {
  expect_lines(report_of(edid_builder_t()
                             .byte(8, 0x04)
                             .byte(9, 0x72)
                             .byte(10, 0xCD)
                             .byte(11, 0xAB)
                             .byte(12, 42)
                             .byte(16, 7)
                             .byte(17, 22)
                             .byte(21, 52)
                             .byte(22, 29)
                             .byte(23, 120)
                             .byte(24, 0xE6)
                             .build()),
               {"EDID Base Block", "  Manufacturer: ACR (Acer)", "  Product code: 0xabcd", "  Serial number: 42",
                "  Made: week 7 of 2012", "  Version: 1.3", "  Digital input: yes", "  Size: 52 cm x 29 cm",
                "  Features: standby suspend active-off sRGB preferred-native ", "  Extensions: 0",
                "  Chromaticity: Red: { 0, 0 }  Green: { 0, 0 }  Blue: { 0, 0 }  White: { 0, 0 }  Gamma: 2.2"});
}

TEST(VisitorRenderer, AMakerWithoutANameGoesByItsLetters) {
  const std::string report = report_of(edid_builder_t().byte(8, 0x04).byte(9, 0x21).byte(17, 22).build());
  expect_lines(report, {"  Manufacturer: AAA (Avolites)", "  Made: 2012"});
  expect_lines(report_of(edid_builder_t().byte(8, 0x04).byte(9, 0x22).build()), {"  Manufacturer: AAB"});
}

TEST(VisitorRenderer, DumpsTheBaseBlockAndTheExtension) {
  const std::string report = report_of(edid_builder_t().cta(0, {}).build());
  EXPECT_EQ(count_of(report, "\n  1: "), 2U);
  EXPECT_EQ(count_of(report, "\n  8: "), 2U);
  expect_lines(report, {"  1: 00 ff ff ff ff ff ff 00 00 00 00 00 00 00 00 00"});
}

TEST(VisitorRenderer, TellsAWrongChecksumFromARightOne) {
  auto bytes = edid_builder_t().build();
  EXPECT_EQ(count_of(report_of(bytes), ", byte 127 agrees"), 1U);
  bytes[127] = 0x05;
  EXPECT_EQ(count_of(report_of(bytes), ", byte 127 is 0x5\n"), 1U);
}

TEST(VisitorRenderer, TellsModesByTheirTextsInEachTimingBlock) {
  expect_lines(
      report_of(
          edid_builder_t().detailed(0, full_hd).standard(0, 0x61, 0x40).cta(1, {data_block(2, {19})}, {hd}).build()),
      {"Established Timings", "  640x480p60", "Standard Timings", "  Codes in use: 1", "  1024x768p60",
       "  1920x1080p60", "  Offset: 54", "  Capacity: 1", "CTA Extension", "  Native detailed timings: 1",
       "CTA Video Data Block", "  1280x720p50", "  Offset: 6", "  Capacity: 6", "  1280x720p60"});
}

TEST(VisitorRenderer, StandardTimingsAreReadAsTheBaseBlockSays) {
  const edid_builder_t with_reduced = edid_builder_t().standard(0, 0x81, 0x00);
  EXPECT_EQ(count_of(report_of(with_reduced.build()), "  1280x800p60 RB\n"), 1U);
}

TEST(VisitorRenderer, TellsDescriptorsByTextOrTag) {
  expect_lines(report_of(edid_builder_t()
                             .descriptor(72, 0xFC, "My Display")
                             .descriptor(90, 0xFF, "S-12")
                             .descriptor(108, 0xFE, "tel\tet\xFFxt")
                             .build()),
               {"Base Monitor Name Descriptor", "  Offset: 72", "  Text: My Display", "Base Monitor Serial Descriptor",
                "  Offset: 90", "  Text: S-12", "Base ASCII String Descriptor", "  Offset: 108", "  Text: tel.et.xt"});
  expect_lines(
      report_of(edid_builder_t().descriptor(72, 0xFD, "").byte(77, 56).byte(78, 75).build()),
      {"Base Monitor Range Descriptor", "  Tag: 0xfd", "  Bytes: 0 0 0 253 0 56 75 32 32 32 32 32 32 32 32 32 32 32 "});
}

TEST(VisitorRenderer, TellsTheFlagsOfTheExtension) {
  edid_builder_t builder = edid_builder_t().cta(0, {});
  expect_lines(report_of(builder.byte(131, 0xA0).build()),
               {"  Underscan: yes", "  Basic audio: no", "  YCC 4:4:4: yes", "  YCC 4:2:2: no"});
}

TEST(VisitorRenderer, TellsAudioByFormatChannelsRatesAndSizes) {
  expect_lines(report_of_blocks({data_block(1, {0x09, 0x07, 0x05, 0x15, 0x07, 0x50})}),
               {"CTA Audio Data Block",
                "  Linear Pulse Code Modulation (LPCM), 2 channels, 32 kHz 44.1 kHz 48 kHz 16 bit 24 bit ",
                "  AC-3, 6 channels, 32 kHz 44.1 kHz 48 kHz "});
}

TEST(VisitorRenderer, TellsHdmiVendorBlocks) {
  expect_lines(report_of_blocks({data_block(3, {0x03, 0x0C, 0, 0x21, 0x3F, 0xB9, 60, 0xA0, 0, 0, 0, 2 << 5, 3, 9}),
                                 data_block(3, {0xD8, 0x5D, 0xC4, 1, 120, 0x88, 0x03})}),
               {"CTA HDMI Vendor-Specific Data Block", "  Physical address: 2.1.3.f", "  Supports AI: yes",
                "  Deep color: 36 bit 30 bit YCC 4:4:4 ", "  DVI dual: yes", "  Max TMDS clock in MHz: 300",
                "  Latencies: yes", "  Interlaced latencies: no", "  HDMI video: yes", "  HDMI VICs: 3 9 ",
                "  3840x2160p24", "CTA HDMI Forum Vendor-Specific Data Block", "  Max TMDS character rate in MHz: 600",
                "  SCDC: yes", "  Scrambling up to 340 MHz: yes", "  4:2:0 36 bit: yes", "  4:2:0 48 bit: no"});
  expect_lines(report_of_blocks({data_block(3, {0x03, 0x0C, 0})}), {"  Physical address: none", "  HDMI video: no"});
}

TEST(VisitorRenderer, TellsExtendedBlocks) {
  expect_lines(report_of_blocks({data_block(7, {0, 0xC7}), data_block(7, {5, 0x81, 3}), data_block(7, {14, 96, 97}),
                                 data_block(7, {15, 0x05})}),
               {"  CTA Video Capability Tag", "  Selectable YCC quantization: yes", "  PT: No Data",
                "  IT: Always Overscan", "  CE: Selectable Overscan or Underscan", "  CTA Colorimetry Block",
                "  Colorimetry: xvYCC601 BT2020RGB ", "  Metadata: 3", "  CTA YCC 420 Video Block", "  VICs: 96 97 ",
                "  CTA YCC 420 Capability Block", "  Entries of the video data block: 1 3 "});
  expect_lines(report_of_blocks({data_block(7, {15})}), {"  Entries of the video data block: all"});
}

TEST(VisitorRenderer, TellsBlocksWithoutAClassOfTheirOwnByTheirBytes) {
  expect_lines(report_of_blocks({data_block(4, {1, 0, 0}), data_block(7, {6, 5}), data_block(3, {0x8B, 0x84, 0x90}),
                                 data_block(3, {1})}),
               {"CTA Speaker Data Block", "  Bytes: 131 1 0 0 ", "  CTA HDR Static Metadata Block", "  Bytes: 226 6 5 ",
                "  IEEE id: 0x90848b", "  IEEE id: none"});
}

TEST(VisitorRenderer, NoBlockIsNoText) {
  visitor_renderer_t renderer;
  for (const bool forward : {true, false}) {
    visit_nothing<edid_t, edid_base_t, est_timings_block_t, std_timings_block_t, det_timings_block_t,
                  base_descriptor_block_t, monitor_name_base_block_t, monitor_serial_base_block_t,
                  ascii_string_base_block_t, cta_extension_t, cta_data_block_t, cta_video_data_block_t,
                  cta_audio_data_block_t, cta_hdmi_vsdb_t, cta_hdmi_forum_vsdb_t, cta_colorimetry_exdb_t,
                  cta_video_capability_exdb_t, cta_ycc_420_video_exdb_t, cta_ycc_420_capability_exdb_t>(renderer,
                                                                                                        forward);
  }
  EXPECT_EQ(renderer.text(), "");
}

TEST(VisitorRenderer, EachReportStartsAnewAndWriteIsTheSame) {
  edid_t edid(edid_builder_t().build());
  visitor_renderer_t renderer;
  renderer.read(&edid);
  const std::string first = renderer.text();
  renderer.write(&edid);
  EXPECT_EQ(renderer.text(), first);
  renderer.read(nullptr);
  EXPECT_EQ(renderer.text(), "");
}
