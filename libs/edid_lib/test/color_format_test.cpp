#include "edid_lib/color_format.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace edid_lib;

namespace {

constexpr color_format_t video = {color_standard_t::bt_709, color_encoding_t::rgb, chroma_sampling_t::yuv_444,
                                  color_range_t::limited, color_depth_t::bits_24};

template <typename T>
std::string written(const T& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

color_format_t read(const std::string& text, color_format_t format = {}) {
  std::istringstream in(text);
  in >> format;
  return format;
}

template <typename Enum>
void expect_words(std::initializer_list<std::string_view> words) {
  uint32_t value = 0;
  for (const std::string_view word : words) {
    EXPECT_EQ(color_word(Enum{value}), word);
    EXPECT_EQ(color_value<Enum>(word), Enum{value}) << word;
    ++value;
  }
  EXPECT_EQ(color_word(Enum{value}), "Unknown");
  EXPECT_EQ(color_word(Enum{0xFFFFFFFF}), "Unknown");
}

}  // namespace

TEST(ColorFormat, ValuesHaveTheirWords) {
  expect_words<color_standard_t>({"Default", "BT.601", "BT.709", "BT.2020", "sRGB", "SMPTE 170", "AdobeRGB",
                                  "DCI-P3 D65", "DCI-P3 Theatre", "x.v.Color"});
  expect_words<color_encoding_t>({"Default", "RGB", "YCC", "Constant Luminance YCC"});
  expect_words<chroma_sampling_t>({"Default", "444", "422", "420"});
  expect_words<color_range_t>({"Default", "Full", "Limited"});
  expect_words<color_depth_t>({"Default", "24 bit", "30 bit", "36 bit", "48 bit"});
}

TEST(ColorFormat, WordsAreReadInAnyCase) {
  EXPECT_EQ(color_value<color_standard_t>("bt.2020"), color_standard_t::bt_2020);
  EXPECT_EQ(color_value<color_standard_t>("SRGB"), color_standard_t::srgb);
  EXPECT_EQ(color_value<color_range_t>("LIMITED"), color_range_t::limited);
}

TEST(ColorFormat, UnknownWordsAreTheDefault) {
  for (const std::string_view word : {"", "Unknown", "RGB ", " RGB", "RG", "RGBA"}) {
    EXPECT_EQ(color_value<color_encoding_t>(word), color_encoding_t::unspecified) << word;
  }
}

TEST(ColorFormat, WritesItsWordsInOrder) {
  EXPECT_EQ(written(video), "color_format_t{BT.709,RGB,444,Limited,24 bit}");
  EXPECT_EQ(written(color_format_t{}), "color_format_t{Default,Default,Default,Default,Default}");
}

TEST(ColorFormat, ReadsWhatItWroteWhateverTheCase) {
  EXPECT_EQ(read(written(video)), video);
  EXPECT_EQ(read("COLOR_FORMAT_T{bt.709,rgb,444,limited,24 BIT}"), video);
}

TEST(ColorFormat, AValueWithoutAWordDoesNotSurvive) {
  color_format_t odd = video;
  odd.encoding = color_encoding_t{77};
  EXPECT_EQ(written(odd), "color_format_t{BT.709,Unknown,444,Limited,24 bit}");
  EXPECT_EQ(read(written(odd)).encoding, color_encoding_t::unspecified);
  EXPECT_EQ(read(written(odd)).chroma, chroma_sampling_t::yuv_444);
}

TEST(ColorFormat, AnotherNameLeavesTheValueAsItIs) {
  EXPECT_EQ(read("colorimetry_t{BT.601, YCC}", video), video);
  EXPECT_EQ(read(" color_format_t{BT.601,YCC,422,Full,30 bit}", video), video);
  EXPECT_EQ(read("", video), video);
}

TEST(ColorFormat, ATextWithANulIsAnother) {
  EXPECT_EQ(read(std::string("color_format_t\0{BT.601,YCC}", 28), video), video);
  EXPECT_EQ(color_value<color_encoding_t>(std::string_view("RGB\0", 4)), color_encoding_t::unspecified);
}

TEST(ColorFormat, MissingWordsAreTheDefaultAndFurtherOnesAreLeftOut) {
  EXPECT_EQ(read("color_format_t{BT.709,RGB", video), (color_format_t{video.colorimetry, video.encoding, {}, {}, {}}));
  EXPECT_EQ(read("color_format_t{}", video), color_format_t{});
  EXPECT_EQ(read("color_format_t{BT.709,RGB,444,Limited,24 bit,Full}"), video);
  EXPECT_EQ(read("color_format_t{,RGB,444,Limited,24 bit}").encoding, color_encoding_t::rgb);
}

TEST(ColorFormat, TheNextValueOfAStreamCanBeRead) {
  std::istringstream in(written(color_format_t{}) + written(video));
  color_format_t format;
  in >> format >> format;
  EXPECT_EQ(format, video);
}

TEST(ColorFormat, EqualsInEveryField) {
  color_format_t other = video;
  other.depth = color_depth_t::bits_30;
  EXPECT_NE(other, video);
  EXPECT_EQ((colorimetry_t{video.colorimetry, video.encoding}), (colorimetry_t{other.colorimetry, other.encoding}));
  EXPECT_NE((colorimetry_t{video.colorimetry, color_encoding_t::ycc}), (colorimetry_t{video.colorimetry, {}}));
}

TEST(ColorFormat, ColorimetryAloneIsWrittenWithABlank) {
  EXPECT_EQ(written(colorimetry_t{color_standard_t::bt_2020, color_encoding_t::constant_luminance_ycc}),
            "colorimetry_t{BT.2020, Constant Luminance YCC}");
}

TEST(ColorFormat, CtaModesOf4To3AreBt601) {
  EXPECT_EQ(default_colorimetry(vid_resolution_t("720x480@59.94 8:9")), color_standard_t::bt_601);
  EXPECT_EQ(default_colorimetry(vid_resolution_t("640x480@60")), color_standard_t::bt_601);
  EXPECT_EQ(default_colorimetry(vid_resolution_t("720x480@59.94 32:27")), color_standard_t::bt_709);
  EXPECT_EQ(default_colorimetry(vid_resolution_t("1920x1080@60")), color_standard_t::bt_709);
  EXPECT_EQ(default_colorimetry(vid_resolution_t("1024x768@60")), color_standard_t::bt_709);
}

TEST(ColorFormat, CtaModesBut640x480AreLimited) {
  const auto range = [](std::string_view key, color_encoding_t encoding) {
    return default_range(vid_resolution_t(key), encoding);
  };
  EXPECT_EQ(range("1920x1080@60", color_encoding_t::rgb), color_range_t::limited);
  EXPECT_EQ(range("640x480@59.94", color_encoding_t::rgb), color_range_t::full);
  EXPECT_EQ(range("1024x768@60", color_encoding_t::rgb), color_range_t::full);
  EXPECT_EQ(range("1024x768@60", color_encoding_t::unspecified), color_range_t::full);
  EXPECT_EQ(range("1920x1080@60", color_encoding_t::constant_luminance_ycc), color_range_t::limited);
  EXPECT_EQ(range("1024x768@60", color_encoding_t::constant_luminance_ycc), color_range_t::full);
}

TEST(ColorFormat, YccIsLimitedWhateverTheMode) {
  for (const std::string_view key : {"640x480@59.94", "1024x768@60", "1920x1080@60"}) {
    EXPECT_EQ(default_range(vid_resolution_t(key), color_encoding_t::ycc), color_range_t::limited) << key;
  }
}
