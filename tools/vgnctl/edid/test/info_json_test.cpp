#include <gtest/gtest.h>

#include "edid_lib/timing_lookup.h"
#include "test_support/edid_builder.h"
#include "tools/vgnctl/edid/edid_json.h"
#include "tools/vgnctl/edid/hex_text.h"

using edid_lib::cta_timing;
using edid_lib::edid_t;
using edid_lib::vid_resolution_t;
using test_support::data_block;
using test_support::edid_builder_t;
using vgnctl::hex_text;
using vgnctl::info_report;
using vgnctl::json_t;

namespace {

json_t info_of(const edid_builder_t& builder) { return info_report(edid_t(builder.build())); }

/// The info of the data blocks of an extension.
json_t blocks_of(const std::vector<std::vector<uint8_t>>& blocks) {
  return info_of(edid_builder_t().cta(0, blocks))["extension"]["blocks"];
}

edid_builder_t monitor() {
  return edid_builder_t()
      .byte(8, 0x04)
      .byte(9, 0x72)
      .byte(10, 0x34)
      .byte(11, 0x12)
      .byte(12, 0x04)
      .byte(15, 0x80)
      .byte(16, 5)
      .byte(17, 23)
      .byte(19, 4)
      .byte(20, 0xA5)
      .byte(21, 60)
      .byte(22, 34)
      .byte(23, 120)
      .byte(24, 0xEF);
}

}  // namespace

TEST(InfoReport, HasWhatTheBaseBlockSaysOfTheDisplay) {
  const json_t base = info_of(monitor())["base"];
  EXPECT_EQ(base["valid"], true);
  EXPECT_EQ(base["manufacturer_id"], "ACR");
  EXPECT_EQ(base["manufacturer_name"], "Acer");
  EXPECT_EQ(base["product_code"], 0x1234);
  EXPECT_EQ(base["serial_number"], 0x80000004U);
  EXPECT_EQ(base["week"], 5);
  EXPECT_EQ(base["year"], 2013);
  EXPECT_EQ(base["version"], 1);
  EXPECT_EQ(base["revision"], 4);
}

TEST(InfoReport, HasTheFeaturesOfTheBaseBlock) {
  const json_t base = info_of(monitor())["base"];
  EXPECT_EQ(base["digital_input"], true);
  EXPECT_EQ(base["color_depth"], 8);
  EXPECT_EQ(base["digital_interface"], 5);
  EXPECT_EQ(base["h_size_cm"], 60);
  EXPECT_EQ(base["v_size_cm"], 34);
  EXPECT_EQ(base["gamma"], 2.2);
  EXPECT_EQ(base["standby"], true);
  EXPECT_EQ(base["suspend"], true);
  EXPECT_EQ(base["active_off"], true);
  EXPECT_EQ(base["color_type"], 3);
  EXPECT_EQ(base["srgb_default"], true);
  EXPECT_EQ(base["preferred_native"], true);
  EXPECT_EQ(base["continuous_frequency"], true);
  const json_t plain = info_of(edid_builder_t().byte(23, 255))["base"];
  EXPECT_EQ(plain["color_depth"], 0) << "told by EDID 1.4 only";
  EXPECT_EQ(plain["gamma"], 3.55);
  EXPECT_EQ(plain["standby"], false);
  EXPECT_EQ(plain["continuous_frequency"], false);
}

TEST(InfoReport, HasTheCoordinatesOfTheColors) {
  // x and y of red, green, blue and white: high eight bits from byte 27 on, low two in bytes 25 and 26.
  const json_t colors =
      info_of(edid_builder_t().byte(25, 0x80).byte(26, 0x01).byte(27, 0xA0).byte(30, 0x99).byte(31, 0x26).byte(
          34, 0x54))["base"]["chromaticity"];
  EXPECT_EQ(colors, json_t::parse(R"({"red": [0.6269531, 0], "green": [0, 0.59765625],
                                      "blue": [0.1484375, 0], "white": [0, 0.32910156]})"));
}

TEST(InfoReport, HasTheTimingsOfTheBaseBlock) {
  const json_t base = info_of(edid_builder_t()
                                  .byte(37, 0x80)
                                  .standard(0, 0x81, 0x80)
                                  .standard(3, 0xD1, 0xC0)
                                  .standard(4, 0x00, 0x30)
                                  .detailed(0, cta_timing(vid_resolution_t("1920x1080@60"))))["base"];
  EXPECT_EQ(base["established"], (json_t{"1152x864@75", "640x480@60"}));
  EXPECT_EQ(base["standard_count"], 3);
  EXPECT_EQ(base["standard"], (json_t{"1280x1024@60", "1920x1080@60"}));
  EXPECT_EQ(base["detailed"], json_t::parse(R"({"offset": 54, "capacity": 1, "modes": ["1920x1080@60"]})"));
}

TEST(InfoReport, PrefersReducedBlankingInStandardTimings) {
  EXPECT_EQ(info_of(edid_builder_t().standard(0, 0x81, 0x00).byte(19, 3))["base"]["standard"],
            json_t::array({"1280x800@60 RB"}));
}

TEST(InfoReport, HasDescriptorsWithTheirTextIfTheyHaveOne) {
  const json_t report = info_of(edid_builder_t()
                                    .detailed(0, cta_timing(vid_resolution_t("1920x1080@60")))
                                    .descriptor(72, 0xFC, "TV \x80\xE9\n")
                                    .descriptor(90, 0xFF, "12345")
                                    .descriptor(108, 0xFD, "range"));
  const json_t list = report["base"]["descriptors"];
  ASSERT_EQ(list.size(), 3U);
  EXPECT_EQ(list[0], json_t::parse(R"({"offset": 72, "tag": 252, "name": "Base Monitor Name Descriptor",
                                       "text": "TV \u0080\u00e9", "data": "000000fc0054562080e90a20202020202020"})"));
  EXPECT_EQ(list[1]["text"], "12345");
  EXPECT_EQ(list[1]["name"], "Base Monitor Serial Descriptor");
  EXPECT_EQ(list[2]["tag"], 0xFD);
  EXPECT_TRUE(list[2].at("text").is_null());
}

TEST(InfoReport, DoesNotCutTextAtControlCharactersInsideIt) {
  using namespace std::string_view_literals;
  const json_t report = info_of(edid_builder_t().descriptor(108, 0xFE, "A\n\0B"sv));
  EXPECT_EQ(report["base"]["descriptors"][2]["text"], std::string("A\n\0B", 4));
}

TEST(InfoReport, HasTheRepairedBytesAndBothChecksums) {
  auto bytes = edid_builder_t().byte(20, 0x00).build();
  bytes[127] = 7;
  const json_t report = info_report(edid_t(bytes));
  bytes[20] = 0x80;
  EXPECT_EQ(report["base"]["data"], hex_text(bytes));
  EXPECT_EQ(report["base"]["checksum_byte"], 7);
  EXPECT_EQ(report["base"]["checksum"], edid_builder_t().build()[127]);
  EXPECT_EQ(report["base"]["extension_count"], 0);
}

TEST(InfoReport, HasNullForAMissingExtension) {
  EXPECT_TRUE(info_of(edid_builder_t().byte(126, 1)).at("extension").is_null());
  auto other = edid_builder_t().cta(0, {}).build();
  other[128] = 0x70;
  EXPECT_TRUE(info_report(edid_t(other)).at("extension").is_null());
}

TEST(InfoReport, TakesAnyNumberOfBytes) {
  const json_t report = info_report(edid_t(std::vector<uint8_t>()));
  EXPECT_EQ(report["valid"], false);
  EXPECT_EQ(report["base"]["valid"], false);
  EXPECT_EQ(report["base"]["data"].get<std::string>().size(), 256U);
  EXPECT_EQ(report["base"]["descriptors"].size(), 3U);
}

TEST(InfoReport, HasWhatTheExtensionSays) {
  const auto bytes = edid_builder_t().cta(0xA5, {}, {cta_timing(vid_resolution_t("1280x720@60"))}).build();
  const json_t extension = info_report(edid_t(bytes))["extension"];
  EXPECT_EQ(extension["data"], hex_text(std::span(bytes).subspan(128)));
  EXPECT_EQ(extension["valid"], true);
  EXPECT_EQ(extension["underscan"], true);
  EXPECT_EQ(extension["basic_audio"], false);
  EXPECT_EQ(extension["ycc_444"], true);
  EXPECT_EQ(extension["ycc_422"], false);
  EXPECT_EQ(extension["native_count"], 5);
  EXPECT_EQ(extension["blocks"], json_t::array());
  EXPECT_EQ(extension["detailed"], json_t::parse(R"({"offset": 4, "capacity": 6, "modes": ["1280x720@60"]})"));
}

TEST(InfoReport, HasNullForMissingDetailedTimingsOfTheExtension) {
  EXPECT_TRUE(info_of(edid_builder_t().cta(0, {}))["extension"].at("detailed").is_null());
}

TEST(InfoReport, HasTheModesOfAVideoBlock) {
  EXPECT_EQ(blocks_of({data_block(2, {0x90, 0x80, 0x06})}), json_t::parse(R"([
    {"name": "CTA Video Data Block", "tag": 2, "extended_tag": null, "extended_name": null, "ieee_id": null,
     "size": 4, "valid": true, "data": "43908006",
     "modes": ["1920x1080@60", "1920x1080@59.94", "720x480i@59.94 8:9"]}])"));
}

TEST(InfoReport, HasWhatTheHdmiBlockSays) {
  EXPECT_EQ(blocks_of({data_block(3, {0x03, 0x0C, 0x00, 0x12, 0x34, 0x00, 0x3C, 0x20, 0x00, 0x60, 1, 0, 9})}),
            json_t::parse(R"([
    {"name": "CTA HDMI Vendor-Specific Data Block", "tag": 3, "extended_tag": null, "extended_name": null,
     "ieee_id": 3075, "size": 14, "valid": true, "data": "6d030c001234003c200060010009",
     "modes": ["3840x2160@30"], "physical_address": 4660, "max_tmds_mhz": 300, "hdmi_vics": [1, 0, 9]}])"));
}

TEST(InfoReport, HasNoPhysicalAddressInAShortHdmiBlock) {
  const json_t block = blocks_of({data_block(3, {0x03, 0x0C, 0x00, 0x12})})[0];
  EXPECT_TRUE(block.at("physical_address").is_null());
  EXPECT_EQ(block["max_tmds_mhz"], 0);
  EXPECT_EQ(block["hdmi_vics"], json_t::array());
  EXPECT_EQ(block["modes"], json_t::array());
  EXPECT_EQ(blocks_of({data_block(3, {0x03, 0x0C, 0x00, 0xFF, 0xFF})})[0]["physical_address"], 0xFFFF);
}

TEST(InfoReport, HasTheIdOfAVendorBlockUnlessItIsTooShort) {
  const json_t blocks = blocks_of({data_block(3, {0xD8, 0x5D, 0xC4, 1}), data_block(3, {0x01, 0x02})});
  EXPECT_EQ(blocks[0]["name"], "CTA HDMI Forum Vendor-Specific Data Block");
  EXPECT_EQ(blocks[0]["ieee_id"], 0xC45DD8);
  EXPECT_FALSE(blocks[0].contains("modes"));
  EXPECT_FALSE(blocks[0].contains("physical_address"));
  EXPECT_TRUE(blocks[1].at("ieee_id").is_null());
  EXPECT_EQ(blocks[1]["valid"], false);
  EXPECT_EQ(blocks[1]["size"], 3);
}

TEST(InfoReport, HasTheExtendedTagAndItsName) {
  const json_t block = blocks_of({data_block(7, {5, 0xC0, 0x00})})[0];
  EXPECT_EQ(block["name"], "CTA Extended Data Block");
  EXPECT_EQ(block["tag"], 7);
  EXPECT_EQ(block["extended_tag"], 5);
  EXPECT_EQ(block["extended_name"], "CTA Colorimetry Block");
  EXPECT_TRUE(block.at("ieee_id").is_null());
}
