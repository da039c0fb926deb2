#include "edid_lib/default_modes.h"

#include <gtest/gtest.h>

using namespace edid_lib;

TEST(DefaultModes, AreThoseThatOthersKnow) {
  EXPECT_EQ(max_output_resolution, "3840x2160@60");
  EXPECT_EQ(min_output_resolution, "640x480@59.94");
  EXPECT_EQ(default_resolution, "1920x1080@60");
  EXPECT_EQ(resolution_of_every_display, "640x480@60");
}

TEST(DefaultModes, FilesAreWhereTheApplianceHasThem) {
  EXPECT_EQ(supported_resolutions_file, "supported_resolutions.json");
  EXPECT_EQ(unsupported_resolutions_file, "unsupported_resolutions.json");
  EXPECT_EQ(media_edid_folder, "/media/media/EDIDs/");
  EXPECT_EQ(system_edid_folder, "/usr/zyl/EDIDs/");
  EXPECT_EQ(edid_file_4k60, "4k60.zedid");
}
