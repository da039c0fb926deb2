#include "sim/light.h"

#include <gtest/gtest.h>

using sim::light_t;
using sim::look_t;

TEST(Light, ADarkOneIsOffWhateverItsColour) {
  EXPECT_EQ(sim::colour_text({"green", {0, 0}}), "off");
  EXPECT_EQ(sim::looks_text({"green", {0, 0}}), "off");
}

TEST(Light, ASteadyOneIsToldWithColourAndBrightness) {
  EXPECT_EQ(sim::colour_text({"blue", {15, 0}}), "blue");
  EXPECT_EQ(sim::blink_text({15, 0}), "steady");
  EXPECT_EQ(sim::looks_text({"blue", {15, 0}}), "blue at 15, steady");
}

TEST(Light, ABlinkingOneIsToldWithItsWholePeriod) {
  EXPECT_EQ(sim::blink_text({15, 1000}), "1000");
  EXPECT_EQ(sim::looks_text({"green", {15, 1000}}), "green at 15, blinks every 1000 ms");
}

TEST(Light, ALampOfTwoColoursShowsTheOneThatIsLit) {
  EXPECT_EQ(sim::mixed({15, 0}, {0, 0}), (look_t{"blue", {15, 0}}));
  EXPECT_EQ(sim::mixed({0, 0}, {15, 1000}), (look_t{"green", {15, 1000}}));
  EXPECT_EQ(sim::looks_text(sim::mixed({0, 0}, {0, 0})), "off");
}

TEST(Light, BlueAndGreenAtOnceAreCyan) { EXPECT_EQ(sim::mixed({5, 0}, {15, 200}), (look_t{"cyan", {15, 200}})); }
