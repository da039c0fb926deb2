#include "zyl/log/module_logger.h"

#include <gtest/gtest.h>
#include <spdlog/spdlog.h>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

TEST(ModuleLogger, TheSameNameIsTheSameLoggerAtInfo) {
  auto& first = zyl::module_logger("same");
  EXPECT_EQ(&first, &zyl::module_logger("same"));
  EXPECT_EQ(first.level(), spdlog::level::info);
}

TEST(ModuleLogger, IsKeptInTheRegistryUnderItsName) {
  auto& logger = zyl::module_logger("kept");
  EXPECT_EQ(spdlog::get("kept").get(), &logger);
  EXPECT_EQ(logger.name(), "kept");
}

TEST(ModuleLogger, TheFirstCallMakesTheDefaultLogger) {
  zyl::module_logger("first");
  EXPECT_EQ(spdlog::default_logger_raw(), spdlog::get("default").get());
  EXPECT_EQ(spdlog::default_logger_raw()->level(), spdlog::level::info);
}

TEST(ModuleLogger, SharesTheSinksOfTheDefaultLogger) {
  EXPECT_EQ(zyl::module_logger("sharing").sinks(), spdlog::default_logger_raw()->sinks());
}

TEST(ModuleLogger, BeforeBootstrapItsLayoutIsSpdlogsOwn) {
  auto& logger = zyl::module_logger("layout");
  testing::internal::CaptureStdout();
  logger.warn("a text");
  logger.flush();
  const std::string line = testing::internal::GetCapturedStdout();
  const std::string two = "[0-9][0-9]";
  EXPECT_TRUE(testing::internal::RE::FullMatch(
      line, testing::internal::RE("\\[" + two + two + "-" + two + "-" + two + " " + two + ":" + two + ":" + two +
                                  "\\.[0-9]+\\] \\[layout\\] \\[warning\\] a text\n")))
      << line;
}

TEST(ModuleLogger, EachLookUpAppliesTheDefaultLevel) {
  auto& logger = zyl::module_logger("levels", "Trace");
  EXPECT_EQ(logger.level(), spdlog::level::trace);
  zyl::module_logger("levels", "WARNING");
  EXPECT_EQ(logger.level(), spdlog::level::warn);
  zyl::module_logger("levels");
  EXPECT_EQ(logger.level(), spdlog::level::info);
}

TEST(ModuleLogger, ARefusedDefaultLevelLeavesTheLevelAsItIs) {
  EXPECT_EQ(zyl::module_logger("refused", "loud").level(), spdlog::level::info);
  zyl::module_logger("refused", "debug");
  EXPECT_EQ(zyl::module_logger("refused", "warn").level(), spdlog::level::debug);
}

TEST(ModuleLogger, ManyThreadsMayAskForTheSameNewName) {
  std::vector<spdlog::logger*> found(8);
  std::vector<std::thread> askers;
  askers.reserve(found.size());
  for (auto& logger : found) {
    askers.emplace_back([&logger] { logger = &zyl::module_logger("contended"); });
  }
  for (auto& asker : askers) {
    asker.join();
  }
  EXPECT_EQ(std::count(found.begin(), found.end(), &zyl::module_logger("contended")), 8);
}
