#include "sim/demo/due.h"

#include <gtest/gtest.h>

#include <vector>

#include "sim/remote/edids.h"

using sim::picture_size_t;

TEST(Due, AUhdDisplayRunsInFullAndIsPublishedInHalf) {
  const auto due = sim::due_for(sim::uhd_display_edid());
  ASSERT_TRUE(due);
  EXPECT_EQ(due->mode, "3840x2160@60");
  EXPECT_EQ(due->timing.text(), "3840x2160");
  EXPECT_EQ(due->published.text(), "1920x1080");
  EXPECT_EQ(due->splash.text(), "1920x1080");
}

TEST(Due, AFullHdDisplayIsTheSameAllTheWay) {
  const auto due = sim::due_for(sim::full_hd_display_edid());
  ASSERT_TRUE(due);
  EXPECT_EQ(due->mode, "1920x1080@60");
  EXPECT_EQ(due->timing, due->published);
  EXPECT_EQ(due->timing, due->splash);
}

TEST(Due, NothingForADisplayThatCannotBeUsed) {
  EXPECT_FALSE(sim::due_for(sim::unusable_display_edid()));
  EXPECT_FALSE(sim::due_for({}));
}

TEST(Due, PublishedSizesAreHalvedWhenEitherSideIsTooLarge) {
  EXPECT_EQ(sim::published_size({1920, 1080}), (picture_size_t{1920, 1080}));
  EXPECT_EQ(sim::published_size({1920, 1200}), (picture_size_t{960, 600}));
  EXPECT_EQ(sim::published_size({1921, 1080}), (picture_size_t{961, 540}));
  EXPECT_EQ(sim::published_size({2560, 1440}), (picture_size_t{1280, 720}));
}

TEST(Due, TheSplashIsCutToFullHdWhenEitherSideIsTooLarge) {
  EXPECT_EQ(sim::splash_size({1280, 1024}), (picture_size_t{1280, 1024}));
  EXPECT_EQ(sim::splash_size({1920, 1200}), (picture_size_t{1920, 1080}));
}

TEST(Due, TheLampOfModel106ShowsTheStatus) {
  const auto due = sim::due_lamp(106);
  EXPECT_EQ(due.idle, (sim::led_t{"blue", 15, 0}));
  EXPECT_EQ(due.good, (sim::led_t{"green", 15, 0}));
  EXPECT_EQ(due.dimmed, (sim::led_t{"green", 5, 0}));
  EXPECT_EQ(due.flashing.colour, "green");
  EXPECT_TRUE(due.shows_status());
}

TEST(Due, TheLampsOfTheOtherModelsOnlyBlink) {
  for (const int model : {85, 100, 105, 137}) {
    const auto due = sim::due_lamp(model);
    EXPECT_EQ(due.idle, sim::led_t{}) << model;
    EXPECT_EQ(due.good, sim::led_t{}) << model;
    EXPECT_EQ(due.flashing, (sim::led_t{"white", 255, 0})) << model;
    EXPECT_FALSE(due.shows_status()) << model;
  }
}
