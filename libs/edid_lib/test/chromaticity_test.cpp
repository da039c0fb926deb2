#include "edid_lib/chromaticity.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <sstream>

using namespace edid_lib;

namespace {

using bytes_t = std::array<uint8_t, chromaticity_size>;

/// sRGB as displays tell it.
constexpr bytes_t srgb = {0xEE, 0x91, 0xA3, 0x54, 0x4C, 0x99, 0x26, 0x0F, 0x50, 0x54};

chromaticity_t read(const bytes_t& bytes) {
  chromaticity_t chromaticity;
  read_chromaticity(bytes, chromaticity);
  return chromaticity;
}

bytes_t written(const chromaticity_t& chromaticity) {
  bytes_t bytes;
  bytes.fill(0xFF);
  write_chromaticity(chromaticity, bytes);
  return bytes;
}

}  // namespace

TEST(Chromaticity, ReadsTenBitsOfEachCoordinate) {
  const chromaticity_t c = read(srgb);
  EXPECT_FLOAT_EQ(c.red_x, 0x28F / 1024.0F);
  EXPECT_FLOAT_EQ(c.red_y, 0x152 / 1024.0F);
  EXPECT_FLOAT_EQ(c.green_x, 0x133 / 1024.0F);
  EXPECT_FLOAT_EQ(c.green_y, 0x266 / 1024.0F);
  EXPECT_FLOAT_EQ(c.blue_x, 0x09A / 1024.0F);
  EXPECT_FLOAT_EQ(c.blue_y, 0x03D / 1024.0F);
  EXPECT_FLOAT_EQ(c.white_x, 0x140 / 1024.0F);
  EXPECT_FLOAT_EQ(c.white_y, 0x151 / 1024.0F);
}

TEST(Chromaticity, WritesWhatItRead) { EXPECT_EQ(written(read(srgb)), srgb); }

TEST(Chromaticity, EveryFractionOfTenBitsSurvives) {
  for (uint32_t bits = 0; bits < 1024; ++bits) {
    chromaticity_t c;
    c.red_x = static_cast<float>(bits) / 1024.0F;
    c.white_y = 1.0F - 1.0F / 1024.0F - c.red_x;
    const chromaticity_t again = read(written(c));
    EXPECT_EQ(again.red_x, c.red_x);
    EXPECT_EQ(again.white_y, c.white_y);
    EXPECT_EQ(again.blue_x, 0);
  }
}

TEST(Chromaticity, AValueBetweenTwoFractionsIsCut) {
  chromaticity_t c;
  c.red_x = 0.64F;
  EXPECT_EQ(read(written(c)).red_x, 655 / 1024.0F);
  c.red_x = 655.999F / 1024.0F;
  EXPECT_EQ(read(written(c)).red_x, 656 / 1024.0F);
  c.red_x = 655.99F / 1024.0F;
  EXPECT_EQ(read(written(c)).red_x, 655 / 1024.0F);
}

TEST(Chromaticity, WhatIsNoCoordinateBecomesTheNearest) {
  chromaticity_t c;
  c.red_x = 2;
  c.green_x = -1;
  c.blue_x = std::nanf("");
  const chromaticity_t again = read(written(c));
  EXPECT_EQ(again.red_x, 1023 / 1024.0F);
  EXPECT_EQ(again.green_x, 0);
  EXPECT_EQ(again.blue_x, 0);
}

TEST(Chromaticity, IsWrittenColourByColour) {
  std::ostringstream out;
  out << chromaticity_t{0.64F, 0.33F, 0.3F, 0.6F, 0.15F, 0.06F, 0.3127F, 0.329F, 2.2F};
  EXPECT_EQ(out.str(),
            "Red: { 0.64, 0.33 }  Green: { 0.3, 0.6 }  Blue: { 0.15, 0.06 }  White: { 0.3127, 0.329 }  Gamma: 2.2");
}
