#include "edid_lib/vid_timing.h"

#include <gtest/gtest.h>

#include <sstream>

using edid_lib::vid_timing_t;

namespace {

constexpr vid_timing_t full_hd = {148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5};

vid_timing_t read(const std::string& text, vid_timing_t timing = {}) {
  std::istringstream in(text);
  in >> timing;
  return timing;
}

}  // namespace

TEST(VidTiming, IsKnownWhenAnyFieldIsSet) {
  EXPECT_FALSE(vid_timing_t{}.known());
  vid_timing_t timing;
  timing.flags = 1;
  EXPECT_TRUE(timing.known());
}

TEST(VidTiming, WritesItsFieldsInOrderWithABlankBehindEach) {
  std::ostringstream out;
  out << full_hd;
  EXPECT_EQ(out.str(), "vid_timing_t{ 148500 1920 2008 2052 2200 1080 1084 1089 1125 5 }");
}

TEST(VidTiming, ReadsWhatItWrote) {
  std::ostringstream out;
  out << full_hd;
  EXPECT_EQ(read(out.str()), full_hd);
}

TEST(VidTiming, ReadsItsNameInAnyCase) {
  EXPECT_EQ(read("VID_Timing_T{148500 1920 2008 2052 2200 1080 1084 1089 1125 5}"), full_hd);
}

TEST(VidTiming, ANameWithANulIsAnotherName) {
  EXPECT_EQ(read(std::string("vid_timing_t\0anything{ 1 2 3 }", 31), full_hd), full_hd);
}

TEST(VidTiming, AnotherNameLeavesTheValueAsItIs) { EXPECT_EQ(read("vid_info_t{ 1 2 3 }", full_hd), full_hd); }

TEST(VidTiming, FieldsWithoutANumberKeepTheirValues) {
  EXPECT_EQ(read("vid_timing_t{ 1 2 3 }", full_hd), (vid_timing_t{1, 2, 3, 2052, 2200, 1080, 1084, 1089, 1125, 5}));
  EXPECT_EQ(read("vid_timing_t{1 2 3}", full_hd), (vid_timing_t{1, 2, 3, 2052, 2200, 1080, 1084, 1089, 1125, 5}));
  EXPECT_EQ(read("vid_timing_t{}", full_hd), full_hd);
}

TEST(VidTiming, AWordAmongTheNumbersIs0AndEndsThem) {
  EXPECT_EQ(read("vid_timing_t{ 1 2 three 4 5 6 7 8 9 10 }", full_hd),
            (vid_timing_t{1, 2, 0, 2052, 2200, 1080, 1084, 1089, 1125, 5}));
}

TEST(VidTiming, WithoutItsFirstBraceItIsNotRead) {
  EXPECT_EQ(read("vid_timing_t 1 2 3 4 5 6 7 8 9 10 }", full_hd), full_hd);
  EXPECT_EQ(read("vid_timing_t", full_hd), full_hd);
  EXPECT_EQ(read("", full_hd), full_hd);
}

TEST(VidTiming, WithoutItsLastBraceItIsReadToTheEnd) {
  EXPECT_EQ(read("vid_timing_t{ 148500 1920 2008 2052 2200 1080 1084 1089 1125 5"), full_hd);
}
