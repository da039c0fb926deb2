#include "sim/log_collector.h"

#include <gtest/gtest.h>
#include <syslog.h>

#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <system_error>

#include "zyl/event_loop.h"

namespace {

std::string text_of(const std::string& path) {
  std::ifstream file(path);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

/// What the program under test would do: the C library's own logging.
void log_as(const char* program, const std::string& text) {
  openlog(program, 0, LOG_USER);
  syslog(LOG_INFO, "%s", text.c_str());
  closelog();
}

class LogCollector : public testing::Test {
 protected:
  void turn() { event_base_loop(loop.base(), EVLOOP_ONCE); }

  zyl::event_loop_t loop;
  sim::property_tree_t tree;
  sim::story_t story{"/tmp/story"};
  sim::log_collector_t collector{loop.base(), tree, story, "/tmp/log"};
};

}  // namespace

TEST_F(LogCollector, TellsWhereTheLogIs) { EXPECT_EQ(tree.value("/sim/log/file"), "/tmp/log"); }

TEST_F(LogCollector, ALoggedTextIsALineInTheFileTheStoryAndTheProperty) {
  log_as("vgn_control", "first text");
  turn();
  EXPECT_EQ(text_of("/tmp/log"), "vgn_control: first text\n");
  EXPECT_EQ(tree.value("/sim/log/last"), "vgn_control: first text");
  EXPECT_TRUE(text_of("/tmp/story").ends_with("\tlog\tvgn_control: first text\n")) << text_of("/tmp/story");
}

TEST_F(LogCollector, LinesKeepTheirOrder) {
  log_as("a", "1");
  log_as("b", "2");
  log_as("a", "3");
  turn();
  EXPECT_EQ(text_of("/tmp/log"), "a: 1\nb: 2\na: 3\n");
}

TEST_F(LogCollector, ATextOfSeveralLinesIsOneLine) {
  log_as("a", "one\ntwo\n");
  turn();
  EXPECT_EQ(text_of("/tmp/log"), "a: one two\n");
}

TEST_F(LogCollector, EveryLineReachesWhoeverWatchesTheProperty) {
  std::string heard;
  tree.on_change([&](const std::string& path, const std::string& value) { heard += path + "=" + value + ";"; });
  log_as("a", "1");
  log_as("a", "1");
  turn();
  EXPECT_EQ(heard, "/sim/log/last=a: 1;/sim/log/last=a: 1;");
}

TEST(LogCollectorStart, AFolderThatDoesNotExistIsAnError) {
  zyl::event_loop_t loop;
  sim::property_tree_t tree;
  sim::story_t story;
  EXPECT_THROW(sim::log_collector_t(loop.base(), tree, story, "/tmp/no/such/log"), std::system_error);
  EXPECT_THROW(sim::log_collector_t(loop.base(), tree, story, "/tmp/log", "/tmp/no/such/socket"), std::system_error);
}

TEST(LineOfDatagram, LosesPriorityTimeAndLineBreak) {
  EXPECT_EQ(sim::line_of_datagram("<14>Nov 21 09:05:59 vgn_control: text\n"), "vgn_control: text");
  EXPECT_EQ(sim::line_of_datagram("<9>Nov  1 09:05:59 x"), "x");
  EXPECT_EQ(sim::line_of_datagram(std::string_view("<191>Nov  1 09:05:59 x\0", 23)), "x");
}

TEST(LineOfDatagram, TextInAnotherFormStaysAsItIs) {
  for (const char* text : {"", "<", "<>x", "<1234>x", "<a>x", "no priority", "Nov 21 09:05:59 no priority"}) {
    EXPECT_EQ(sim::line_of_datagram(text), text);
  }
  EXPECT_EQ(sim::line_of_datagram("<14>no time"), "no time");
  EXPECT_EQ(sim::line_of_datagram("<14>2024-11-21T09:05:59 x"), "2024-11-21T09:05:59 x");
}
