#include <gtest/gtest.h>
#include <spdlog/common.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <string>

#include "zyl/log/module_logger.h"
#include "zyl/log/setup_logging.h"

using spdlog::level::level_enum;

namespace {

constexpr const char* console = "stdout_color_sink_mt";

class SpdlogLevel : public testing::Test {
 protected:
  ~SpdlogLevel() override { unsetenv("SPDLOG_LEVEL"); }

  void from_environment(const std::string& levels) {
    reset();
    setenv("SPDLOG_LEVEL", levels.c_str(), 1);
    zyl::setup_logging_with_environment("vgn_control", false, console);
  }

  template <std::size_t count>
  void from_arguments(const std::array<const char*, count>& arguments) {
    reset();
    zyl::setup_logging_with_arguments("vgn_control", false, console, static_cast<int>(count), arguments.data());
  }

  void reset() {
    one.set_level(level_enum::info);
    two.set_level(level_enum::info);
  }

  void expect_levels(level_enum first, level_enum second) const {
    EXPECT_EQ(one.level(), first);
    EXPECT_EQ(two.level(), second);
  }

  spdlog::logger& one = zyl::module_logger("one");
  spdlog::logger& two = zyl::module_logger("two");
};

}  // namespace

TEST_F(SpdlogLevel, WithoutTheVariableLevelsStay) {
  zyl::setup_logging_with_environment("vgn_control", false, console);
  expect_levels(level_enum::info, level_enum::info);
}

TEST_F(SpdlogLevel, ALevelAloneIsForAllLoggers) {
  from_environment("debug");
  expect_levels(level_enum::debug, level_enum::debug);
}

TEST_F(SpdlogLevel, ANamedLoggerHasItsOwnLevelWhereverItStands) {
  from_environment("off,two=trace");
  expect_levels(level_enum::off, level_enum::trace);
  from_environment("two=warning,error");
  expect_levels(level_enum::err, level_enum::warn);
}

TEST_F(SpdlogLevel, OnlyNamedLoggersChangeWithoutALevelForAll) {
  from_environment("two=critical");
  expect_levels(level_enum::info, level_enum::critical);
}

TEST_F(SpdlogLevel, OfTwoSettingsForALoggerTheLastCounts) {
  from_environment("one=debug,one=error");
  expect_levels(level_enum::err, level_enum::info);
}

TEST_F(SpdlogLevel, WordsAreTakenInAnyCaseAndBetweenBlanks) {
  from_environment(" one = DEBUG ,, two=Warn");
  expect_levels(level_enum::debug, level_enum::warn);
  from_environment("one=err");
  expect_levels(level_enum::err, level_enum::info);
}

TEST_F(SpdlogLevel, UnknownLevelsAndLoggersAreIgnored) {
  from_environment("loud,one=notice,nobody=debug,two=trace");
  expect_levels(level_enum::info, level_enum::trace);
}

TEST_F(SpdlogLevel, ValuesThatAreEmptyOrTooLongAreIgnored) {
  from_environment("");
  expect_levels(level_enum::info, level_enum::info);
  from_environment("debug" + std::string(508, ' '));
  expect_levels(level_enum::info, level_enum::info);
  from_environment("debug" + std::string(507, ' '));
  expect_levels(level_enum::debug, level_enum::debug);
}

TEST_F(SpdlogLevel, TheEnvironmentComesOnTopOfTheLevelFile) {
  std::ofstream("/build_info.json") << R"({"git_revision": "abc"})";
  std::ofstream("/var/rwfs2/log_level.vgn_control.json")
      << R"({"git_revision": "abc", "vgn_control": {"one": "Trace", "two": "Trace"}})";
  setenv("SPDLOG_LEVEL", "two=error", 1);
  zyl::setup_logging_with_environment("vgn_control", true, console);
  expect_levels(level_enum::trace, level_enum::err);
  EXPECT_EQ(two.flush_level(), level_enum::trace);
}

TEST_F(SpdlogLevel, EveryArgumentOfItsFormApplies) {
  from_arguments(std::array{"program", "--input", "SPDLOG_LEVEL=debug", "x", "SPDLOG_LEVEL=two=off"});
  expect_levels(level_enum::debug, level_enum::off);
}

TEST_F(SpdlogLevel, ArgumentsOfAnotherFormAndTheProgramsNameDoNot) {
  from_arguments(std::array{"SPDLOG_LEVEL=debug", "spdlog_level=debug", "--SPDLOG_LEVEL=debug", "SPDLOG_LEVEL"});
  expect_levels(level_enum::info, level_enum::info);
}

TEST_F(SpdlogLevel, TheVariantForArgumentsDoesNotReadTheEnvironment) {
  setenv("SPDLOG_LEVEL", "debug", 1);
  from_arguments(std::array{"program"});
  expect_levels(level_enum::info, level_enum::info);
}

TEST_F(SpdlogLevel, PlainSetupReadsNeither) {
  setenv("SPDLOG_LEVEL", "debug", 1);
  zyl::setup_logging("vgn_control", false, console);
  expect_levels(level_enum::info, level_enum::info);
}

TEST_F(SpdlogLevel, AnArgumentReplacesTheGeneralLevelOfTheOneBefore) {
  from_arguments(std::array{"program", "SPDLOG_LEVEL=trace", "SPDLOG_LEVEL=error"});
  expect_levels(level_enum::err, level_enum::err);
}
