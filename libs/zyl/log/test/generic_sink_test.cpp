#include "zyl/log/generic_sink.h"

#include <gtest/gtest.h>
#include <spdlog/logger.h>

#include <memory>
#include <mutex>
#include <regex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using sink_t = zyl::generic_sink<std::mutex>;

class GenericSink : public testing::Test {
 protected:
  std::shared_ptr<sink_t> make_sink(const std::string& pattern) {
    return std::make_shared<sink_t>([this](std::string_view text) { heard.emplace_back(text); }, pattern);
  }

  std::vector<std::string> heard;
};

}  // namespace

TEST_F(GenericSink, HandsOverEachRecordInItsPatternWithoutALineEnd) {
  spdlog::logger logger("sinks", make_sink("[%n] [%l] %v"));
  logger.error("one");
  logger.info("two\nthree");
  EXPECT_EQ(heard, (std::vector<std::string>{"[sinks] [error] one", "[sinks] [info] two\nthree"}));
}

TEST_F(GenericSink, TellsDateTimeAndTextAloneIfNotToldOtherwise) {
  spdlog::logger logger("sinks", std::make_shared<sink_t>([this](std::string_view text) { heard.emplace_back(text); }));
  logger.warn("text");
  ASSERT_EQ(heard.size(), 1U);
  EXPECT_TRUE(std::regex_match(heard[0], std::regex(R"(\[\d\d/\d\d/\d\d \d\d:\d\d:\d\d\]: text)"))) << heard[0];
}

TEST_F(GenericSink, TakesAnotherPatternLater) {
  spdlog::logger logger("sinks", make_sink("%v"));
  logger.set_pattern("<%v>");
  logger.info("text");
  EXPECT_EQ(heard, std::vector<std::string>{"<text>"});
}

TEST_F(GenericSink, WhatItsFunctionThrowsGoesToTheErrorHandler) {
  std::string reported;
  spdlog::logger logger("sinks", std::make_shared<sink_t>([](std::string_view) { throw std::runtime_error("full"); }));
  logger.set_error_handler([&reported](const std::string& text) { reported = text; });
  EXPECT_NO_THROW(logger.info("text"));
  EXPECT_EQ(reported, "full");
}

TEST_F(GenericSink, ItsFunctionIsCalledByOneThreadAtATime) {
  spdlog::logger logger("sinks", make_sink("%v"));
  std::vector<std::thread> writers;
  for (int i = 0; i < 4; ++i) {
    writers.emplace_back([&logger] {
      for (int line = 0; line < 250; ++line) {
        logger.info("line");
      }
    });
  }
  for (auto& writer : writers) {
    writer.join();
  }
  EXPECT_EQ(heard, std::vector<std::string>(1000, "line"));
}
