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
  ASSERT_EQ(log.entries().size(), 1U);
  EXPECT_EQ(log.entries()[0].level, spdlog::level::warn);
  EXPECT_NE(log.entries()[0].text.find("reentrant invocation"), std::string::npos) << log.entries()[0].text;
}

TEST(EventLoopLogDeathTest, AFatalErrorIsToldWithItsCodeAndEndsTheProcess) {
  // 0xdeaddead as an int; the shell's part of it is its last byte.
  EXPECT_EXIT(provoke_fatal_error(), testing::ExitedWithCode(0xad), "error:.*\nerror:FATAL : -559030611\n");
}
