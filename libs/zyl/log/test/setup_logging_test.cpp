#include "zyl/log/setup_logging.h"

#include <gtest/gtest.h>
#include <spdlog/sinks/syslog_sink.h>
#include <spdlog/spdlog.h>

#include <fstream>
#include <iterator>
#include <string>

#include "zyl/log/module_logger.h"

TEST(SetupLogging, KeepsTheLastComponentOfTheProgramsPath) {
  zyl::setup_logging("/usr/bin/vgn_control", false, "stdout_color_sink_mt");
  EXPECT_EQ(zyl::program_name(), "vgn_control");
}

TEST(SetupLogging, GivesSyslogToLoggersMadeBeforeAndAfter) {
  auto& before = zyl::module_logger("setup_before");
  zyl::setup_logging("vgn_control", false, "");
  auto& after = zyl::module_logger("setup_after");
  for (auto* logger : {&before, &after, spdlog::default_logger_raw()}) {
    ASSERT_EQ(logger->sinks().size(), 1U) << logger->name();
    EXPECT_NE(dynamic_cast<spdlog::sinks::syslog_sink<std::mutex>*>(logger->sinks().front().get()), nullptr)
        << logger->name();
  }
}

TEST(SetupLogging, AnyOtherSinkNameIsAFile) {
  auto& logger = zyl::module_logger("setup_file");
  zyl::setup_logging("vgn_control", false, "/tmp/setup_logging_test.log");
  logger.error("hello");
  logger.flush();
  std::ifstream file("/tmp/setup_logging_test.log");
  const std::string text((std::istreambuf_iterator<char>(file)), {});
  EXPECT_NE(text.find("] [setup_file] [error] hello\n"), std::string::npos) << text;
}

TEST(ModuleLogger, TheSameNameIsTheSameLoggerAtInfo) {
  auto& first = zyl::module_logger("same");
  EXPECT_EQ(&first, &zyl::module_logger("same"));
  EXPECT_EQ(first.level(), spdlog::level::info);
}
