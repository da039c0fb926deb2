#include "edid_lib/timing_words.h"

#include <gtest/gtest.h>

using edid_lib::text_of;
using edid_lib::timing_location_of;
using edid_lib::timing_location_t;
using edid_lib::timing_type_of;
using edid_lib::timing_type_t;

TEST(TimingWords, TypesHaveTheirTexts) {
  const std::string_view texts[] = {"undefined type", "Established Timing", "DMT Timing", "GFT Timing",
                                    "CVT Timing",     "CTA Timing",         "HDMI Timing"};
  for (uint32_t value = 0; value < std::size(texts); ++value) {
    EXPECT_EQ(text_of(timing_type_t{value}), texts[value]);
    EXPECT_EQ(timing_type_of(texts[value]), timing_type_t{value});
  }
}

TEST(TimingWords, LocationsHaveTheirTexts) {
  const std::string_view texts[] = {"undefined location",
                                    "Established Block",
                                    "Standard Block",
                                    "Detailed Timing Descriptor",
                                    "CTA Extension Video Data Block",
                                    "CTA Extension HDMI Vendor Specific Data Block"};
  for (uint32_t value = 0; value < std::size(texts); ++value) {
    EXPECT_EQ(text_of(timing_location_t{value}), texts[value]);
    EXPECT_EQ(timing_location_of(texts[value]), timing_location_t{value});
  }
}

TEST(TimingWords, ValuesWithoutATextAreUndefined) {
  EXPECT_EQ(text_of(timing_type_t{7}), "undefined type");
  EXPECT_EQ(text_of(timing_type_t{0xFFFFFFFF}), "undefined type");
  EXPECT_EQ(text_of(timing_location_t{6}), "undefined location");
  EXPECT_EQ(text_of(timing_location_t{0xFFFFFFFF}), "undefined location");
}

TEST(TimingWords, TextsAreComparedToTheLetter) {
  EXPECT_EQ(timing_type_of("cta timing"), timing_type_t::undefined);
  EXPECT_EQ(timing_type_of("CTA Timing "), timing_type_t::undefined);
  EXPECT_EQ(timing_type_of(""), timing_type_t::undefined);
  EXPECT_EQ(timing_location_of("standard block"), timing_location_t::undefined);
}
