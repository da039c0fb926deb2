#include "zyl/log/scope_logger.h"

#include <gtest/gtest.h>
#include <spdlog/logger.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "zyl/log/generic_sink.h"

namespace {

using lines_t = std::vector<std::string>;

class ScopeLogger : public testing::Test {
 protected:
  static std::string id() { return std::to_string(syscall(SYS_gettid)); }

  lines_t heard;
  spdlog::logger logger{"scopes", std::make_shared<zyl::generic_sink<std::mutex>>(
                                      [this](std::string_view text) { heard.emplace_back(text); }, "%l:%v")};
};

}  // namespace

TEST_F(ScopeLogger, DrawsItsBeginningAndItsEnd) {
  {
    const zyl::scope_logger scope("discovery", spdlog::level::warn, logger);
    EXPECT_EQ(heard, lines_t{"warning:   [" + id() + "]: \u2554\u2550\u2550\u2550discovery\u2550\u2550\u2550\u2557"});
    heard.clear();
  }
  EXPECT_EQ(heard, lines_t{"warning:   [" + id() + "]: \u255a\u2550\u2550\u2550discovery\u2550\u2550\u2550\u255d"});
}

TEST_F(ScopeLogger, TheBoxesAreTheseBytes) {
  { const zyl::scope_logger scope("x", spdlog::level::info, logger); }
  ASSERT_EQ(heard.size(), 2U);
  EXPECT_EQ(heard[0], "info:   [" + id() + "]: \xe2\x95\x94\xe2\x95\x90\xe2\x95\x90\xe2\x95\x90" + "x" +
                          "\xe2\x95\x90\xe2\x95\x90\xe2\x95\x90\xe2\x95\x97");
  EXPECT_EQ(heard[1], "info:   [" + id() + "]: \xe2\x95\x9a\xe2\x95\x90\xe2\x95\x90\xe2\x95\x90" + "x" +
                          "\xe2\x95\x90\xe2\x95\x90\xe2\x95\x90\xe2\x95\x9d");
}

TEST_F(ScopeLogger, StreamedTextGoesOutOnFlushBehindFourBlanksAndTheThread) {
  zyl::scope_logger scope("s", spdlog::level::info, logger);
  heard.clear();
  scope << "number " << 7;
  EXPECT_EQ(heard, lines_t{});
  scope.flush();
  EXPECT_EQ(heard, lines_t{"info:    [" + id() + "]: number 7"});
}

TEST_F(ScopeLogger, EachLineOfStreamedTextIsALineOfItsOwn) {
  zyl::scope_logger scope("s", spdlog::level::info, logger);
  heard.clear();
  scope << "one" << std::endl << "two\n\nthree" << std::flush;
  const std::string head = "info:    [" + id() + "]: ";
  EXPECT_EQ(heard, (lines_t{head + "one", head + "two", head, head + "three"}));
}

TEST_F(ScopeLogger, AFlushWithoutTextWritesNothing) {
  zyl::scope_logger scope("s", spdlog::level::info, logger);
  heard.clear();
  scope << std::flush << "text" << std::flush << std::flush;
  EXPECT_EQ(heard.size(), 1U);
}

TEST_F(ScopeLogger, TextThatWasNotFlushedComesBeforeTheEnd) {
  { zyl::scope_logger("s", spdlog::level::info, logger) << "late"; }
  ASSERT_EQ(heard.size(), 3U);
  EXPECT_EQ(heard[1], "info:    [" + id() + "]: late");
  EXPECT_EQ(heard[2], "info:   [" + id() + "]: \u255a\u2550\u2550\u2550s\u2550\u2550\u2550\u255d");
}

TEST_F(ScopeLogger, WithItsLevelDisabledWritesNothing) {
  { zyl::scope_logger("s", spdlog::level::debug, logger) << "text" << std::flush << "more"; }
  EXPECT_EQ(heard, lines_t{});
}

TEST_F(ScopeLogger, NamesAndTextsAreNeverFormatStrings) {
  { zyl::scope_logger("{}", spdlog::level::info, logger) << "{0} %s"; }
  ASSERT_EQ(heard.size(), 3U);
  EXPECT_NE(heard[0].find("\u2550{}\u2550"), std::string::npos);
  EXPECT_NE(heard[1].find("{0} %s"), std::string::npos);
}

TEST_F(ScopeLogger, TellsTheThreadThatItIsOn) {
  std::string other_id;
  std::thread other([&] {
    other_id = id();
    const zyl::scope_logger scope("s", spdlog::level::info, logger);
  });
  other.join();
  ASSERT_EQ(heard.size(), 2U);
  EXPECT_NE(other_id, id());
  EXPECT_EQ(heard[0].rfind("info:   [" + other_id + "]: ", 0), 0U) << heard[0];
}

TEST_F(ScopeLogger, GoesToTheDefaultLoggerIfNotToldOtherwise) {
  const auto sinks = spdlog::default_logger_raw()->sinks();
  spdlog::default_logger_raw()->sinks() = logger.sinks();
  { const zyl::scope_logger scope("s", spdlog::level::info); }
  spdlog::default_logger_raw()->sinks() = sinks;
  EXPECT_EQ(heard.size(), 2U);
}

TEST(ThreadId, IsTheKernelsAndStaysTheSame) {
  EXPECT_EQ(zyl::thread_id(), syscall(SYS_gettid));
  EXPECT_EQ(zyl::thread_id(), zyl::thread_id());
}
