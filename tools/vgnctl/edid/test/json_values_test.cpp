#include "tools/vgnctl/edid/json_values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

using edid_lib::vid_resolution_t;
using vgnctl::json_of;
using vgnctl::json_t;
using vgnctl::line_of;
using vgnctl::utf8_of_bytes;

namespace {

using limits = std::numeric_limits<float>;

}  // namespace

TEST(JsonFloat, IsTheShortestDecimalThatReadsBack) {
  EXPECT_EQ(line_of(json_of(59.94F)), "59.94");
  EXPECT_EQ(line_of(json_of(59.950172F)), "59.950172");
  EXPECT_EQ(line_of(json_of(23.98F)), "23.98");
  EXPECT_EQ(line_of(json_of(1.7777778F)), "1.7777778");
  EXPECT_EQ(json_of(60.F), json_t(60));
  EXPECT_EQ(json_of(-0.25F), json_t(-0.25));
}

TEST(JsonFloat, ReadsBackAsTheSameFloat) {
  uint32_t bits = 1;
  for (int i = 0; i < 20'000; ++i) {
    bits = bits * 1664525U + 1013904223U;
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    if (std::isfinite(value)) {
      ASSERT_EQ(static_cast<float>(json_t::parse(line_of(json_of(value))).get<double>()), value) << bits;
    }
  }
  for (const float value : {limits::max(), limits::lowest(), limits::min(), limits::denorm_min()}) {
    EXPECT_EQ(static_cast<float>(json_t::parse(line_of(json_of(value))).get<double>()), value);
  }
}

TEST(JsonFloat, IsATextWhereJsonHasNoNumber) {
  EXPECT_EQ(json_of(limits::quiet_NaN()), json_t("nan"));
  EXPECT_EQ(json_of(-limits::quiet_NaN()), json_t("nan"));
  EXPECT_EQ(json_of(limits::infinity()), json_t("inf"));
  EXPECT_EQ(json_of(-limits::infinity()), json_t("-inf"));
}

TEST(JsonTiming, IsTheTenNumbersInTheirOrder) {
  const edid_lib::vid_timing_t timing{148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5};
  EXPECT_EQ(line_of(json_of(timing)), "[148500,1920,2008,2052,2200,1080,1084,1089,1125,5]");
}

TEST(JsonMode, HasAllThatAModeIs) {
  vid_resolution_t mode(1920, 1080, edid_lib::timing_type_t::cta, edid_lib::timing_location_t::cta_video_data_block,
                        60);
  mode.preferred = true;
  mode.h_image_mm = 600;
  mode.v_image_mm = 340;
  mode.h_border = 1;
  mode.v_border = 2;
  mode.timing = {148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5};
  EXPECT_EQ(json_of(mode), json_t::parse(R"json({
    "key": "1920x1080@60", "text": "1920x1080p60", "list_text": "1920x1080p60 (preferred)",
    "width": 1920, "height": 1080, "fps": 60.0, "nominal_fps": 60.0,
    "pixel_aspect_x": 1.0, "pixel_aspect_y": 1.0,
    "reduced_blanking": false, "interlaced": false, "preferred": true,
    "h_image_mm": 600, "v_image_mm": 340, "h_border": 1, "v_border": 2, "type": 5, "location": 4,
    "timing": [148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5]
})json"));
}

TEST(JsonMode, TellsWhatIsParsed) {
  const json_t mode = json_of(vid_resolution_t("720x480i@59.94 8:9"));
  EXPECT_EQ(mode["key"], "720x480i@59.94 8:9");
  EXPECT_EQ(mode["text"], "720x480i59.94 4:3");
  EXPECT_EQ(mode["pixel_aspect_x"], 8);
  EXPECT_EQ(mode["pixel_aspect_y"], 9);
  EXPECT_EQ(mode["interlaced"], true);
  EXPECT_EQ(json_of(vid_resolution_t("1280x768@60 RB"))["reduced_blanking"], true);
  EXPECT_EQ(json_of(vid_resolution_t("1x1@nan"))["fps"], "nan");
  EXPECT_EQ(json_of(vid_resolution_t("1x1@nan"))["nominal_fps"], -1);
  EXPECT_EQ(json_of(vid_resolution_t("1x1@-inf"))["fps"], "-inf");
}

TEST(JsonBytesAsText, HaveACharacterForEachByte) {
  EXPECT_EQ(utf8_of_bytes("TV \x80\xFF"), "TV \xC2\x80\xC3\xBF");
  EXPECT_EQ(line_of(utf8_of_bytes(std::string_view("A\0\n\x1F\x7F\xE9", 6))), "\"A\\u0000\\n\\u001f\\u007f\\u00e9\"");
  for (int byte = 0; byte < 256; ++byte) {
    const std::string text(1, static_cast<char>(byte));
    const auto read = json_t::parse(line_of(utf8_of_bytes(text))).get<std::string>();
    ASSERT_EQ(read, utf8_of_bytes(text));
    ASSERT_EQ(read.size(), byte < 0x80 ? 1U : 2U);
  }
}

TEST(JsonBytesAsText, ArePrintedWithoutControlCharacters) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string line = line_of(utf8_of_bytes(std::string(1, static_cast<char>(byte))));
    for (const char character : line) {
      EXPECT_TRUE(character >= ' ' && character <= '~') << byte << " is " << line;
    }
  }
  EXPECT_EQ(line_of(utf8_of_bytes("\x80\x9B\x9F")), "\"\\u0080\\u009b\\u009f\"");
  EXPECT_EQ(line_of(utf8_of_bytes("\xA0\xFF")), "\"\\u00a0\\u00ff\"");
}

TEST(JsonLine, IsOneLineOfAscii) {
  EXPECT_EQ(line_of(json_t{{"b", "\n\xFF"}, {"a", nullptr}}), "{\"b\":\"\\n\\ufffd\",\"a\":null}");
  EXPECT_EQ(line_of("\xF0\x9F\x93\xBA"), "\"\\ud83d\\udcfa\"");
}
