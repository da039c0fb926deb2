#include "zyl/log/default_level.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

using spdlog::level::level_enum;

TEST(DefaultLevel, HasANumberForEachWord) {
  const std::vector<std::pair<const char*, int>> words{{"off", 6},  {"critical", 5}, {"error", 4}, {"warning", 3},
                                                       {"info", 2}, {"notice", 2},   {"debug", 1}, {"trace", 0}};
  for (const auto& [word, number] : words) {
    ASSERT_TRUE(zyl::default_level_of(word).has_value()) << word;
    EXPECT_EQ(static_cast<int>(*zyl::default_level_of(word)), number) << word;
  }
}

TEST(DefaultLevel, IsReadInAnyCase) {
  EXPECT_EQ(zyl::default_level_of("WARNING"), level_enum::warn);
  EXPECT_EQ(zyl::default_level_of("Notice"), level_enum::info);
  EXPECT_EQ(zyl::default_level_of("tRaCe"), level_enum::trace);
}

TEST(DefaultLevel, AnyOtherTextIsRefused) {
  for (const char* text : {"", "warn", "err", "debug ", "2", "information", "notic\xe9"}) {
    EXPECT_EQ(zyl::default_level_of(text), std::nullopt) << text;
  }
}
