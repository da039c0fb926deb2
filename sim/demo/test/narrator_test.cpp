#include "sim/demo/narrator.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <sstream>
#include <string>

namespace {

constexpr std::chrono::milliseconds short_limit{20};

class Narrator : public testing::Test {
 protected:
  Narrator() : narrator(made_pipe(), terminal, false, false), story("/tmp/story") {}

  static std::string made_pipe() {
    mkfifo("/tmp/story", 0600);
    return "/tmp/story";
  }

  void tell(const std::string& line) { story << line << '\n' << std::flush; }

  /// Waits until the narrator has heard a text.
  sim::outcome_t hears(const std::string& text) {
    return narrator.expect_told(text, [&text](const sim::story_line_t& line) { return line.text == text; });
  }

  std::ostringstream terminal;
  sim::narrator_t narrator;
  std::ofstream story;
};

}  // namespace

TEST_F(Narrator, HoldsLinesBackUntilTheClockStartsAndPrintsThemRelativeToIt) {
  tell("1000000\tengine\tstarted");
  ASSERT_TRUE(hears("started"));
  EXPECT_EQ(terminal.str(), "");
  narrator.start_clock(2'500'000);
  EXPECT_EQ(terminal.str(), "   -1500.0  engine     started\n");
}

TEST_F(Narrator, PrintsLinesAsTheyComeOnceTheClockRuns) {
  narrator.start_clock(1'000'000);
  tell("1012300\tappliance\tmodel is up");
  ASSERT_TRUE(hears("model is up"));
  EXPECT_EQ(terminal.str(), "     +12.3  appliance  model is up\n");
}

TEST_F(Narrator, PrintsWhatWasHeldOnlyOnce) {
  tell("1\tengine\tstarted");
  ASSERT_TRUE(hears("started"));
  narrator.start_clock(0);
  const std::string printed = terminal.str();
  narrator.start_clock_if_held(0);
  EXPECT_EQ(terminal.str(), printed);
}

TEST_F(Narrator, PrintsNothingOnceItFellSilentButStillHears) {
  narrator.start_clock(0);
  narrator.fall_silent();
  tell("1\tengine\tended");
  ASSERT_TRUE(hears("ended"));
  EXPECT_EQ(terminal.str(), "");
}

TEST_F(Narrator, WaitsForLinesSinceATimeAndCountsThem) {
  const auto any = [](const sim::story_line_t&) { return true; };
  tell("10\tengine\tone");
  tell("20\tengine\ttwo");
  EXPECT_TRUE(narrator.expect_told("two lines", any, 0, 2));
  EXPECT_TRUE(narrator.expect_told("one late line", any, 20, 1));
  const auto missing = narrator.expect_told("two late lines", any, 20, 2, short_limit);
  EXPECT_FALSE(missing);
  EXPECT_EQ(missing.seen, "two late lines: told 1 of 2 times in 20 ms");
}
