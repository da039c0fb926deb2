// What libevent itself says, as it arrives in the logger "zyl_event".
#include <event2/event_struct.h>
#include <gtest/gtest.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <cstdlib>
#include <memory>

#include "test_support/log_capture.h"
#include "zyl/event_loop.h"
#include "zyl/log/module_logger.h"
#include "zyl/post.h"

namespace {

// libevent checks its callers in debug mode, and gives up at an event that was never set up.
[[noreturn]] void provoke_fatal_error() {
  zyl::module_logger("zyl_event").sinks() = {std::make_shared<spdlog::sinks::stderr_sink_mt>()};
  zyl::module_logger("zyl_event").set_pattern("%l:%v");
  event_enable_debug_mode();
  zyl::event_loop_t loop;
  struct event never_set_up {};
  never_set_up.ev_base = loop.base();
  event_add(&never_set_up, nullptr);
  std::abort();
}

}  // namespace

TEST(EventLoopLog, WarningsOfLibeventAreWarnings) {
  const test_support::log_capture_t log("zyl_event");
  zyl::event_loop_t loop;
  zyl::post(loop.base(), [&loop] {
    loop.run();  // in itself, which libevent warns of
    loop.stop();
  });
  loop.run();
  const auto entries = log.entries();
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[0].level, spdlog::level::warn);
  EXPECT_NE(entries[0].text.find("reentrant invocation"), std::string::npos) << entries[0].text;
  EXPECT_EQ(entries[1].level, spdlog::level::err);
  EXPECT_EQ(entries[1].text, "event loop failed: -1");
}

TEST(EventLoopLog, MessagesOfLibeventAreInformation) {
  const test_support::log_capture_t log("zyl_event");
  setenv("EVENT_SHOW_METHOD", "1", 1);
  const zyl::event_loop_t loop;
  unsetenv("EVENT_SHOW_METHOD");
  const auto entries = log.entries();
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_EQ(entries[0].level, spdlog::level::info);
  EXPECT_EQ(entries[0].text, "libevent using: epoll");
}

TEST(EventLoopLog, DebugTextsOfLibeventAreDebug) {
  const test_support::log_capture_t log("zyl_event", spdlog::level::debug);
  zyl::event_loop_t loop;
  event_enable_debug_logging(EVENT_DBG_ALL);
  zyl::post(loop.base(), [&loop] { loop.stop(); });
  loop.run();
  event_enable_debug_logging(EVENT_DBG_NONE);
  const auto entries = log.entries();
  ASSERT_FALSE(entries.empty());
  for (const auto& entry : entries) {
    EXPECT_EQ(entry.level, spdlog::level::debug) << entry.text;
  }
}

TEST(EventLoopLogDeathTest, AFatalErrorIsToldWithItsCodeAndEndsTheProcess) {
  // 0xdeaddead as an int; the shell's part of it is its last byte.
  EXPECT_EXIT(provoke_fatal_error(), testing::ExitedWithCode(0xad), "error:.*\nerror:FATAL : -559030611\n");
}
