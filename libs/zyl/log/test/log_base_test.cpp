#include "zyl/log/log_base.h"

#include <gtest/gtest.h>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/sinks/ostream_sink.h>

#include <memory>
#include <mutex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "zyl/log/module_logger.h"

static auto& module_log = zyl::module_logger("log_base_test");
#include "zyl/log/log_bind.h"

namespace {

class throwing_sink_t : public spdlog::sinks::base_sink<std::mutex> {
 public:
  explicit throwing_sink_t(bool known) : throw_known(known) {}

 protected:
  void sink_it_(const spdlog::details::log_msg& /*message*/) override {
    if (throw_known) {
      throw std::runtime_error("disk full");
    }
    throw 7;  // NOLINT(hicpp-exception-baseclass): something foreign
  }
  void flush_() override {}

 private:
  bool throw_known;
};

class LogBase : public testing::Test {
 protected:
  LogBase() {
    auto sink = std::make_shared<spdlog::sinks::ostream_sink_mt>(written);
    sink->set_pattern("%l:%v");
    module_log.sinks() = {sink};
    module_log.set_level(spdlog::level::info);
  }

  std::ostringstream written;
};

}  // namespace

TEST_F(LogBase, HandsItsTextOverWhenTheTemporaryDies) {
  log_info_s() << "opened " << 3 << " of " << 4;
  EXPECT_EQ(written.str(), "info:opened 3 of 4\n");
}

TEST_F(LogBase, TextIsNeverAFormatString) {
  log_error_s() << "{} {0} %s";
  EXPECT_EQ(written.str(), "error:{} {0} %s\n");
}

TEST_F(LogBase, DisabledLevelFormatsNothing) {
  struct counted_t {
    int* formatted;
  };
  int formatted = 0;
  const auto tell = [&formatted](std::ostream& out) -> std::ostream& {
    if (out) {
      ++formatted;
    }
    return out;
  };
  log_debug_s line;
  tell(line);
  EXPECT_EQ(formatted, 0);
  EXPECT_EQ(written.str(), "");
}

TEST_F(LogBase, EachHelperCarriesItsLevel) {
  module_log.set_level(spdlog::level::trace);
  log_error_s() << "e";
  log_warn_s() << "w";
  log_info_s() << "i";
  log_debug_s() << "d";
  log_trace_s() << "t";
  EXPECT_EQ(written.str(), "error:e\nwarning:w\ninfo:i\ndebug:d\ntrace:t\n");
}

TEST_F(LogBase, FailingSinkGoesToTheErrorHandler) {
  std::vector<std::string> reported;
  module_log.set_error_handler([&](const std::string& text) { reported.push_back(text); });
  module_log.sinks() = {std::make_shared<throwing_sink_t>(true)};
  EXPECT_NO_THROW(log_info_s() << "x");
  EXPECT_EQ(reported, std::vector<std::string>{"disk full"});
}

TEST_F(LogBase, ForeignExceptionIsReportedAndDoesNotEscape) {
  std::vector<std::string> reported;
  module_log.set_error_handler([&](const std::string& text) { reported.push_back(text); });
  module_log.sinks() = {std::make_shared<throwing_sink_t>(false)};
  EXPECT_NO_THROW(log_info_s() << "x");
  EXPECT_EQ(reported, std::vector<std::string>{"Unknown exeption in logger"});
}
