#include "tools/vgnctl/edid/mode_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using edid_lib::output_connection_filter;
using edid_lib::vid_resolution_t;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;
using vgnctl::comparison_line;
using vgnctl::list_lines;
using vgnctl::mode_lines;
using vgnctl::table_lines;
using vgnctl::usable_lines;

namespace {

vid_resolution_t preferred_full_hd() {
  vid_resolution_t mode("1920x1080@60");
  mode.preferred = true;
  mode.type = edid_lib::timing_type_t::cta;
  mode.location = edid_lib::timing_location_t::cta_video_data_block;
  return mode;
}

}  // namespace

TEST(ModeLines, TellWhatTheTablesKnow) {
  EXPECT_EQ(mode_lines(vid_resolution_t("1280x720@60")),
            "1280x720p60\n"
            "  Key                 1280x720@60\n"
            "  Rate                60, nominal 60\n"
            "  Picture aspect      16:9, pixels 1:1\n"
            "  CTA                 VIC 4: 74250 kHz, 1280 1390 1430 1650, 720 725 730 750, flags 0x5\n"
            "  HDMI                no\n"
            "  DMT                 74250 kHz, 1280 1390 1430 1650, 720 725 730 750, flags 0x5\n"
            "  Established         no\n"
            "  Timing used         CTA Timing: 74250 kHz, 1280 1390 1430 1650, 720 725 730 750, flags 0x5\n"
            "  Default colours     BT.709, RGB Limited, YCC Limited\n"
            "  As an output mode   accepted\n");
}

TEST(ModeLines, TellWhatIsNotKnown) {
  EXPECT_THAT(mode_lines(vid_resolution_t("320x200i@50 2:1")),
              AllOf(StartsWith("320x200i50 16:5\n"), HasSubstr("pixels 2:1\n"), HasSubstr("Timing used         none\n"),
                    HasSubstr("refused by Interlaced Filter\n")));
}

TEST(ListLines, HaveTextKeyAndOrigin) {
  EXPECT_EQ(list_lines({preferred_full_hd(), vid_resolution_t("640x480@60")}),
            "1920x1080p60 (preferred)  1920x1080@60          CTA Timing, CTA Extension Video Data Block\n"
            "640x480p60                640x480@60            undefined type, undefined location\n");
  EXPECT_EQ(list_lines({}), "no modes\n");
}

TEST(UsableLines, HaveTheRefusedModesBehindTheOthers) {
  EXPECT_EQ(usable_lines({vid_resolution_t("1920x1080i@60"), preferred_full_hd()}, output_connection_filter()),
            "1920x1080p60 (preferred)  1920x1080@60          CTA Timing, CTA Extension Video Data Block\n"
            "\n"
            "1920x1080i60              1920x1080i@60         refused by Interlaced Filter\n");
  EXPECT_EQ(usable_lines({}, output_connection_filter()), "no modes\n");
  EXPECT_THAT(usable_lines({vid_resolution_t("1x1@60")}, output_connection_filter()),
              StartsWith("no modes\n\n1x1p60 "));
}

TEST(ComparisonLine, TellsTheRelation) {
  const vid_resolution_t slow("1920x1080@60");
  const vid_resolution_t fast("1920x1080@120");
  EXPECT_EQ(comparison_line(slow, fast), "1920x1080@60 is greater than 1920x1080@120\n");
  EXPECT_EQ(comparison_line(fast, slow), "1920x1080@120 is less than 1920x1080@60\n");
  EXPECT_EQ(comparison_line(slow, vid_resolution_t("1920x1080i@60")), "1920x1080@60 equals 1920x1080i@60\n");
}

TEST(TableLines, HaveKeyNumberAndTiming) {
  EXPECT_THAT(table_lines("hdmi"), StartsWith("3840x2160@24          3    297000 kHz, 3840 5116 5204 5500, "
                                              "2160 2168 2178 2250, flags 0x5\n3840x2160@25          2"));
  EXPECT_THAT(table_lines("dmt"), HasSubstr("\n1280x720@60                74250 kHz, "));
}
