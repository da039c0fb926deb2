#include "tools/vgnctl/edid/mode_json.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

using vgnctl::color_report;
using vgnctl::comparison;
using vgnctl::json_of;
using vgnctl::json_t;
using vgnctl::mode_report;
using vgnctl::table_report;

namespace {

const json_t no_timing = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0};

std::vector<std::string> keys(const json_t& table) {
  std::vector<std::string> list;
  for (const json_t& row : table["rows"]) {
    list.push_back(row["key"]);
  }
  return list;
}

}  // namespace

TEST(ModeReport, TellsAllOfAModeThatEveryTableKnows) {
  json_t report = mode_report("1920x1080@60");
  EXPECT_EQ(report["mode"], json_of(edid_lib::vid_resolution_t("1920x1080@60")));
  report.erase("mode");
  EXPECT_EQ(report, json_t::parse(R"({
    "input": "1920x1080@60", "aspect_ratio": "16:9", "picture_aspect": 1.7777778, "is_4_3": false, "is_16_9": true,
    "cta_vic": 16, "cta_timing": [148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5],
    "hdmi_vic": null, "hdmi_timing": null,
    "dmt_timing": [148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 10],
    "established_index": null, "established_timing": null,
    "classify": 5, "resolved_timing": [148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5], "resolved_type": 5,
    "default_colorimetry": 2, "default_range_rgb": 2, "default_range_ycc": 2, "refused_by": null})"));
}

TEST(ModeReport, HasNullForEachLookUpThatFails) {
  const json_t report = mode_report("1111x999@60");
  for (const char* member : {"cta_vic", "cta_timing", "hdmi_vic", "hdmi_timing", "dmt_timing", "established_index",
                             "established_timing", "refused_by"}) {
    EXPECT_TRUE(report.at(member).is_null()) << member;
  }
  EXPECT_EQ(report["classify"], 0);
  EXPECT_EQ(report["resolved_timing"], no_timing);
  EXPECT_EQ(report["resolved_type"], 0);
  EXPECT_EQ(report["default_range_rgb"], 1);
}

TEST(ModeReport, FindsAModeInTheEstablishedAndTheHdmiTable) {
  const json_t vga = mode_report("640x480@60");
  EXPECT_EQ(vga["established_index"], 5);
  EXPECT_EQ(vga["established_timing"], (json_t{25175, 640, 656, 752, 800, 480, 490, 492, 525, 10}));
  EXPECT_EQ(vga["cta_vic"], 1) << "by its slower twin";
  EXPECT_EQ(vga["default_colorimetry"], 1);
  EXPECT_EQ(vga["default_range_rgb"], 1);
  const json_t four_k = mode_report("4096x2160@24");
  EXPECT_EQ(four_k["hdmi_vic"], 4);
  EXPECT_EQ(four_k["hdmi_timing"], (json_t{297000, 4096, 5116, 5204, 5500, 2160, 2168, 2178, 2250, 5}));
  EXPECT_EQ(mode_report("1024x768i@43")["established_index"], 12);
}

TEST(ModeReport, NamesTheFilterThatRefusesTheMode) {
  EXPECT_EQ(mode_report("1920x1080i@60")["refused_by"], "Interlaced Filter");
  EXPECT_EQ(mode_report("720x480@59.94 8:9")["refused_by"], "Non Square Pixel Filter");
  EXPECT_EQ(mode_report("4096x2160@60")["refused_by"], "Max Resolution Filter");
  EXPECT_EQ(mode_report("320x200@60")["refused_by"], "Min Resolution Filter");
  EXPECT_EQ(mode_report("1920x1080@75")["refused_by"], "Max FPS Filter");
  EXPECT_EQ(mode_report("1920x1080@nan")["refused_by"], "Min FPS Filter");
}

TEST(ModeReport, TellsWhatTheParserHasThrown) {
  for (const char* text : {"1920x@60", "x1080@60", "1920abcx1080@60", "axb@1"}) {
    EXPECT_EQ(mode_report(text), (json_t{{"input", text}, {"error", "invalid_argument"}})) << text;
  }
  EXPECT_EQ(mode_report("2147483648x1@60"), (json_t{{"input", "2147483648x1@60"}, {"error", "out_of_range"}}));
  EXPECT_EQ(mode_report("1x-2147483649@60")["error"], "out_of_range");
}

TEST(ModeReport, TakesTheEmptyTextForTheModeOfDefaults) {
  const json_t report = mode_report("");
  EXPECT_EQ(report["mode"]["key"], "0x0@23.98");
  EXPECT_EQ(report["aspect_ratio"], "0:0");
  EXPECT_EQ(report["picture_aspect"], 0);
}

TEST(ModeComparison, HasExactlyOneRelation) {
  EXPECT_EQ(
      comparison("1920x1080@60", "1280x720@60"),
      json_t::parse(R"({"a": "1920x1080@60", "b": "1280x720@60", "equal": false, "less": false, "greater": true})"));
  EXPECT_EQ(comparison("1920x1080@120", "1920x1080@60")["less"], true) << "rates compare as texts";
  const json_t equal = comparison("1920x1080@60", "1920x1080i@60 4:3");
  EXPECT_EQ(equal["equal"], true);
  EXPECT_EQ(equal["less"], false);
  EXPECT_EQ(equal["greater"], false);
}

TEST(ModeComparison, TellsTheFirstErrorOfEither) {
  EXPECT_EQ(comparison("ax1@60", "1x1@60"),
            json_t::parse(R"({"a": "ax1@60", "b": "1x1@60", "error": "invalid_argument"})"));
  EXPECT_EQ(comparison("1x1@60", "1x2147483648@60")["error"], "out_of_range");
  EXPECT_EQ(comparison("ax1@60", "1x2147483648@60")["error"], "invalid_argument");
  EXPECT_EQ(comparison("1x2147483648@60", "ax1@60")["error"], "out_of_range");
}

TEST(ColorReport, HasTheFiveNumbersAndTheTextOfThem) {
  EXPECT_EQ(color_report("color_format_t{BT.709,RGB,444,Limited,24 bit}"),
            json_t::parse(R"({"input": "color_format_t{BT.709,RGB,444,Limited,24 bit}", "fields": [2, 1, 1, 2, 1],
                              "text": "color_format_t{BT.709,RGB,444,Limited,24 bit}"})"));
  EXPECT_EQ(color_report("COLOR_FORMAT_T{bt.2020,ycc,420,full,48 BIT}")["fields"], (json_t{3, 2, 3, 1, 4}));
}

TEST(ColorReport, HasZeroForAWordThatStandsForNothing) {
  const json_t report = color_report("color_format_t{Unknown,RGB,,9,24 bit}");
  EXPECT_EQ(report["fields"], (json_t{0, 1, 0, 0, 1}));
  EXPECT_EQ(report["text"], "color_format_t{Default,RGB,Default,Default,24 bit}");
  EXPECT_EQ(color_report("color_format_t{}")["fields"], (json_t{0, 0, 0, 0, 0})) << "read, not left alone";
}

TEST(ColorReport, HasNullForATextThatIsLeftAlone) {
  for (const char* text : {"", "BT.709", "colorimetry_t{BT.709, RGB}", "color_format{BT.709,RGB,444,Limited,24 bit}"}) {
    const json_t report = color_report(text);
    EXPECT_TRUE(report["fields"].is_null()) << text;
    EXPECT_EQ(report["text"], "color_format_t{Default,Default,Default,Default,Default}") << text;
  }
}

TEST(TableReport, HasTheRowsInTheOrderOfTheirKeys) {
  const struct {
    const char* name;
    std::size_t count;
    const char* first;
  } tables[] = {{"established", 17, "1024x768@60"},
                {"dmt", 88, "1024x768@120 RB"},
                {"cta", 107, "1280x720@100"},
                {"hdmi", 4, "3840x2160@24"}};
  for (const auto& table : tables) {
    const json_t report = table_report(table.name);
    EXPECT_EQ(report["table"], table.name);
    EXPECT_EQ(keys(report).size(), table.count);
    EXPECT_EQ(keys(report).front(), table.first);
    const auto list = keys(report);
    EXPECT_TRUE(std::is_sorted(list.begin(), list.end())) << table.name;
  }
}

TEST(TableReport, HasNumberAndTimingOfARowButNoNumberForDmt) {
  EXPECT_EQ(table_report("cta")["rows"][0], json_t::parse(R"({"key": "1280x720@100", "number": 41,
                              "timing": [148500, 1280, 1720, 1760, 1980, 720, 725, 730, 750, 5]})"));
  EXPECT_EQ(table_report("established")["rows"][0]["number"], 11);
  EXPECT_EQ(table_report("hdmi")["rows"][0]["number"], 3);
  const json_t dmt = table_report("dmt");
  for (const json_t& row : dmt["rows"]) {
    EXPECT_TRUE(row.at("number").is_null());
  }
}

TEST(TableReport, KnowsNoOtherTable) { EXPECT_THROW(table_report("gtf"), std::invalid_argument); }
