#include "zyl/log/guarded_logger.h"

#include <gtest/gtest.h>
#include <spdlog/sinks/base_sink.h>

#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "zyl/log/module_logger.h"

namespace {

using texts_t = std::vector<std::string>;

class acting_sink_t : public spdlog::sinks::base_sink<std::mutex> {
 public:
  std::function<void()> on_record = [] {};
  std::function<void()> on_flush = [] {};

 protected:
  void sink_it_(const spdlog::details::log_msg& /*message*/) override { on_record(); }
  void flush_() override { on_flush(); }
};

[[noreturn]] void throw_known() { throw std::runtime_error("disk full"); }
[[noreturn]] void throw_foreign() { throw 7; }  // NOLINT(hicpp-exception-baseclass): that is the point

class GuardedLogger : public testing::Test {
 protected:
  GuardedLogger() {
    logger.set_error_handler([this](const std::string& text) { reported.push_back(text); });
  }

  std::shared_ptr<acting_sink_t> sink = std::make_shared<acting_sink_t>();
  zyl::guarded_logger_t logger{"guarded", sink};
  texts_t reported;
};

}  // namespace

TEST_F(GuardedLogger, AForeignExceptionIsReportedOnceAndDoesNotEscape) {
  sink->on_record = throw_foreign;
  EXPECT_NO_THROW(logger.info("x"));
  EXPECT_EQ(reported, texts_t{"Unknown exeption in logger"});
}

TEST_F(GuardedLogger, AnOrdinaryExceptionIsReportedOnceByItsText) {
  sink->on_record = throw_known;
  EXPECT_NO_THROW(logger.info("x"));
  EXPECT_EQ(reported, texts_t{"disk full"});
}

TEST_F(GuardedLogger, WhatAFlushThrowsIsReportedToo) {
  sink->on_flush = throw_foreign;
  EXPECT_NO_THROW(logger.flush());
  EXPECT_EQ(reported, texts_t{"Unknown exeption in logger"});
  sink->on_flush = throw_known;
  logger.flush_on(spdlog::level::info);
  EXPECT_NO_THROW(logger.info("x"));
  EXPECT_EQ(reported, (texts_t{"Unknown exeption in logger", "disk full"}));
}

TEST_F(GuardedLogger, BelowTheFlushLevelNothingIsFlushed) {
  int flushes = 0;
  sink->on_flush = [&flushes] { ++flushes; };
  logger.flush_on(spdlog::level::warn);
  logger.info("x");
  EXPECT_EQ(flushes, 0);
  logger.warn("x");
  EXPECT_EQ(flushes, 1);
}

TEST_F(GuardedLogger, TheOtherSinksStillGetTheRecord) {
  const auto other = std::make_shared<acting_sink_t>();
  int records = 0;
  other->on_record = [&records] { ++records; };
  logger.sinks().push_back(other);
  sink->on_record = throw_foreign;
  logger.info("x");
  EXPECT_EQ(records, 1);
}

TEST_F(GuardedLogger, ASinkHearsItsOwnLevelsOnly) {
  int records = 0;
  sink->on_record = [&records] { ++records; };
  sink->set_level(spdlog::level::warn);
  logger.info("x");
  EXPECT_EQ(records, 0);
}

TEST_F(GuardedLogger, AnErrorHandlerThatThrowsDoesNotEscapeEither) {
  sink->on_record = throw_known;
  logger.set_error_handler([](const std::string&) { throw_foreign(); });
  EXPECT_NO_THROW(logger.info("x"));
}

TEST_F(GuardedLogger, ACloneIsGuardedToo) {
  sink->on_record = throw_foreign;
  const auto copy = logger.clone("copy");
  EXPECT_EQ(copy->name(), "copy");
  EXPECT_NO_THROW(copy->info("x"));
  EXPECT_EQ(reported, texts_t{"Unknown exeption in logger"});
}

TEST(GuardedLoggers, AreWhatModulesAndTheDefaultGet) {
  EXPECT_NE(dynamic_cast<zyl::guarded_logger_t*>(&zyl::module_logger("module")), nullptr);
  EXPECT_NE(dynamic_cast<zyl::guarded_logger_t*>(&zyl::module_logger("default")), nullptr);
}
