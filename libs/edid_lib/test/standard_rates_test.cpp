#include "edid_lib/standard_rates.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

using edid_lib::standard_rate_of;

namespace {

constexpr float all_rates[] = {23.98F, 24, 25, 29.97F, 30, 43,      50,  56,  59.94F,  60, 67,
                               70,     72, 75, 85,     88, 119.88F, 120, 200, 239.76F, 240};

/// What `standard_rate_of` has to answer, by a walk over the list.
float nearest_by_walk(float fps) {
  if (fps <= all_rates[0]) {
    return all_rates[0];
  }
  for (std::size_t i = 1; i < std::size(all_rates); ++i) {
    if (fps <= all_rates[i]) {
      return (all_rates[i] - all_rates[i - 1]) * 0.5F >= all_rates[i] - fps ? all_rates[i] : all_rates[i - 1];
    }
  }
  return all_rates[std::size(all_rates) - 1];
}

void expect_as_by_walk(float fps) {
  const float nearest = nearest_by_walk(fps);
  EXPECT_EQ(standard_rate_of(fps, false).rate, nearest) << fps;
  EXPECT_EQ(standard_rate_of(fps, true).rate, std::round(nearest)) << fps;
}

}  // namespace

TEST(StandardRates, EveryRateIsFoundAsAWalkOverTheListWould) {
  std::mt19937 random(33);  // NOLINT(cert-msc51-cpp): the same rates in every run
  std::uniform_real_distribution<float> rates(-10, 260);
  for (int i = 0; i < 100000; ++i) {
    expect_as_by_walk(rates(random));
  }
}

TEST(StandardRates, BoundsAreFoundAsAWalkOverTheListWould) {
  for (std::size_t i = 0; i < std::size(all_rates); ++i) {
    const float middle = i == 0 ? 0 : (all_rates[i] + all_rates[i - 1]) / 2;
    for (const float fps : {all_rates[i], middle}) {
      expect_as_by_walk(fps);
      expect_as_by_walk(std::nextafter(fps, 0.0F));
      expect_as_by_walk(std::nextafter(fps, 1000.0F));
    }
  }
}

TEST(StandardRates, HaveTheirTexts) {
  const std::string_view texts[] = {"23.98", "24", "25", "29.97", "30", "43",     "50",  "56",  "59.94",  "60", "67",
                                    "70",    "72", "75", "85",    "88", "119.88", "120", "200", "239.76", "240"};
  for (std::size_t i = 0; i < std::size(all_rates); ++i) {
    EXPECT_EQ(standard_rate_of(all_rates[i], false).text, texts[i]);
  }
}

TEST(StandardRates, WhatIsNoNumberIsMinusOne) {
  for (const bool whole : {false, true}) {
    EXPECT_EQ(standard_rate_of(std::nanf(""), whole).rate, -1);
    EXPECT_EQ(standard_rate_of(std::nanf(""), whole).text, "-1");
  }
  EXPECT_EQ(standard_rate_of(std::numeric_limits<float>::infinity(), false).rate, 240);
  EXPECT_EQ(standard_rate_of(-std::numeric_limits<float>::infinity(), true).rate, 24);
}
