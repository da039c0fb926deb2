#include "tools/vgnctl/edid/edid_json.h"

#include <gtest/gtest.h>

#include "edid_lib/timing_lookup.h"
#include "edid_lib/visitor_modes.h"
#include "test_support/edid_builder.h"
#include "tools/vgnctl/edid/hex_text.h"

using edid_lib::cta_timing;
using edid_lib::edid_t;
using edid_lib::output_connection_filter;
using edid_lib::vid_resolution_t;
using test_support::data_block;
using test_support::edid_builder_t;
using vgnctl::hex_text;
using vgnctl::json_of;
using vgnctl::json_t;
using vgnctl::keys_of;
using vgnctl::modes_of;
using vgnctl::modes_report;
using vgnctl::rewrite_report;
using vgnctl::usable_report;

namespace {

edid_lib::vid_timing_t full_hd() { return cta_timing(vid_resolution_t("1920x1080@60")); }

/// A detailed timing, three video codes, three HDMI VICs and a detailed timing in the extension.
edid_t tv() {
  return edid_t(edid_builder_t()
                    .detailed(0, full_hd())
                    .cta(1,
                         {data_block(2, {0x90, 0x05, 0x03}),
                          data_block(3, {0x03, 0x0C, 0x00, 0x10, 0x00, 0x00, 0x3C, 0x20, 0x00, 0x60, 1, 3, 5})},
                         {cta_timing(vid_resolution_t("1280x720@50"))})
                    .build());
}

json_t keys_in(const json_t& modes) {
  json_t keys = json_t::array();
  for (const json_t& mode : modes) {
    keys.push_back(mode["key"]);
  }
  return keys;
}

}  // namespace

TEST(ModesReport, HasTheListInTheOrderOfTheVisitor) {
  edid_t edid = tv();
  const json_t report = modes_report(edid);
  EXPECT_EQ(report["valid"], true);
  EXPECT_EQ(report["modes"], json_of(modes_of(edid)));
  EXPECT_EQ(keys_in(report["modes"]),
            (json_t{"1920x1080@60", "1920x1080@60", "1280x720@50", "1920x1080@59.94", "1920x1080i@60",
                    "1920x1080i@29.97", "720x480@59.94 32:27", "3840x2160@30", "3840x2160@24", "640x480@60"}));
  EXPECT_EQ(report["modes"][0]["location"], 3);
  EXPECT_EQ(report["modes"][0]["preferred"], true);
  EXPECT_EQ(report["modes"][9]["fps"], json_of(25175000.F / 800 / 525));
}

TEST(ModesReport, TellsThatAnEdidIsNotValid) {
  edid_t empty{std::vector<uint8_t>()};
  EXPECT_EQ(modes_report(empty), json_t::parse(R"({"valid": false, "modes": []})"));
}

TEST(UsableReport, HasWhatPassesAndWhatIsRefusedByItsPlaceInTheList) {
  edid_t edid = tv();
  const json_t report = usable_report(edid, output_connection_filter());
  EXPECT_EQ(report["valid"], true);
  EXPECT_EQ(report["modes"], json_of(output_connection_filter().modes(edid)));
  EXPECT_EQ(report["refused"], json_t::parse(R"([
    {"index": 4, "key": "1920x1080i@60", "filter": "Interlaced Filter"},
    {"index": 5, "key": "1920x1080i@29.97", "filter": "Interlaced Filter"},
    {"index": 6, "key": "720x480@59.94 32:27", "filter": "Non Square Pixel Filter"}])"));
}

TEST(UsableReport, HasAllModesOnce) {
  edid_t edid = tv();
  auto filter = output_connection_filter();
  filter.min_resolution = vid_resolution_t("1920x1080@60");
  const json_t report = usable_report(edid, filter);
  EXPECT_EQ(report["modes"].size() + report["refused"].size(), modes_of(edid).size());
  EXPECT_EQ(report["refused"][0],
            json_t::parse(R"({"index": 2, "key": "1280x720@50", "filter": "Min Resolution Filter"})"));
}

TEST(UsableReport, HasEmptyListsForAnEmptyEdid) {
  edid_t empty{std::vector<uint8_t>()};
  EXPECT_EQ(usable_report(empty, output_connection_filter()),
            json_t::parse(R"({"valid": false, "modes": [], "refused": []})"));
}

TEST(RewriteReport, HasTheBlocksOfTheFilteredEdid) {
  edid_t edid = tv();
  edid_t filtered = output_connection_filter().filtered_edid(edid);
  const json_t report = rewrite_report(filtered);
  EXPECT_EQ(report["valid"], true);
  EXPECT_EQ(report["modes"], json_of(modes_of(filtered)));
  EXPECT_EQ(report["native_count"], 1);
  EXPECT_EQ(report["established"], "200000");
  EXPECT_EQ(report["standard"], "01010101010101010101010101010101");
  EXPECT_EQ(report["detailed"], hex_text(test_support::detailed_entry(full_hd())));
  EXPECT_EQ(report["video_blocks"], json_t::array({"4110"}));
  EXPECT_EQ(report["hdmi_vics"], json_t::parse("[[1, 3]]"));
  EXPECT_EQ(report["data"], hex_text(filtered.assemble()));
}

TEST(RewriteReport, HasThePlacesOfTheExtensionsDetailedTimings) {
  edid_t edid = tv();
  edid_t filtered = output_connection_filter().filtered_edid(edid);
  const std::string detailed = rewrite_report(filtered)["extension_detailed"];
  const auto entry = hex_text(test_support::detailed_entry(cta_timing(vid_resolution_t("1280x720@50"))));
  EXPECT_EQ(detailed.size(), 2 * 18 * edid.cta()->detailed_timings()->capacity());
  EXPECT_EQ(detailed.substr(0, 36), entry);
  EXPECT_EQ(detailed.find_first_not_of('0', 36), std::string::npos);
}

TEST(RewriteReport, HasEachVideoAndHdmiBlockOnItsOwn) {
  const std::vector<uint8_t> hdmi = data_block(3, {0x03, 0x0C, 0x00, 0x10, 0x00, 0x00, 0x3C, 0x20, 0x00, 0x20, 2});
  edid_t edid(edid_builder_t()
                  .cta(0, {data_block(2, {4}), hdmi, data_block(2, {0x10, 0x13}), hdmi, data_block(3, {1, 2, 3})})
                  .build());
  const json_t before = rewrite_report(edid);
  EXPECT_EQ(before["video_blocks"], (json_t{"4104", "421013"}));
  EXPECT_EQ(before["hdmi_vics"], json_t::parse("[[2], [2]]"));
  edid_t filtered = output_connection_filter().filtered_edid(edid);
  EXPECT_EQ(rewrite_report(filtered)["hdmi_vics"], json_t::parse("[[2, 2], [2, 2]]")) << "each gets all modes";
}

TEST(RewriteReport, HasNullZeroAndEmptyListsWithoutExtension) {
  edid_t edid(edid_builder_t().build());
  const json_t report = rewrite_report(edid);
  EXPECT_TRUE(report.at("extension_detailed").is_null());
  EXPECT_EQ(report["native_count"], 0);
  EXPECT_EQ(report["video_blocks"], json_t::array());
  EXPECT_EQ(report["hdmi_vics"], json_t::array());
  EXPECT_EQ(report["detailed"].get<std::string>().size(), 36U);
}

TEST(RewriteReport, HasNullWithoutDetailedTimingsInTheExtension) {
  edid_t edid(edid_builder_t().cta(0, {data_block(2, {4})}).build());
  EXPECT_TRUE(rewrite_report(edid).at("extension_detailed").is_null());
}

TEST(RewriteReport, ShowsTheModeOfEveryDisplayWhereNonePasses) {
  edid_t empty{std::vector<uint8_t>()};
  edid_t filtered = output_connection_filter().filtered_edid(empty);
  const json_t report = rewrite_report(filtered);
  EXPECT_EQ(report["valid"], true);
  EXPECT_EQ(keys_in(report["modes"]).back(), "640x480@60");
  EXPECT_EQ(report["established"], "200000");
}
