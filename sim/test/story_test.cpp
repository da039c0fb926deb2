#include "sim/story.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace {

std::vector<std::string> lines_of(const std::string& path) {
  std::ifstream file(path);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    lines.push_back(line);
  }
  return lines;
}

}  // namespace

TEST(Story, TellsTimeActorAndTextInOneLineAtOnce) {
  sim::story_t story("/tmp/story");
  story.tell("driver", "output 0: timing 3840x2160");
  const auto lines = lines_of("/tmp/story");
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_TRUE(std::regex_match(lines[0], std::regex("[0-9]+\tdriver\toutput 0: timing 3840x2160"))) << lines[0];
}

TEST(Story, TimesNeverRunBackwards) {
  sim::story_t story("/tmp/story");
  for (int i = 0; i < 100; ++i) {
    story.tell("log", "x");
  }
  const auto lines = lines_of("/tmp/story");
  ASSERT_EQ(lines.size(), 100U);
  for (std::size_t i = 1; i < lines.size(); ++i) {
    EXPECT_GE(std::stoll(lines[i]), std::stoll(lines[i - 1]));
  }
}

TEST(Story, ATextWithLineBreaksStaysOneLine) {
  sim::story_t story("/tmp/story");
  story.tell("log", "one\ntwo\tthree\x7f");
  const auto lines = lines_of("/tmp/story");
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_TRUE(lines[0].ends_with("\tlog\tone two three ")) << lines[0];
}

TEST(Story, LinesOfManyThreadsStayWhole) {
  sim::story_t story("/tmp/story");
  std::vector<std::thread> tellers;
  for (int i = 0; i < 4; ++i) {
    tellers.emplace_back([&story] {
      for (int j = 0; j < 50; ++j) {
        story.tell("engine", "decoder cleared");
      }
    });
  }
  for (auto& teller : tellers) {
    teller.join();
  }
  const auto lines = lines_of("/tmp/story");
  ASSERT_EQ(lines.size(), 200U);
  for (const auto& line : lines) {
    EXPECT_TRUE(std::regex_match(line, std::regex("[0-9]+\tengine\tdecoder cleared"))) << line;
  }
}

TEST(Story, WithoutAFileItSwallowsAll) {
  sim::story_t story;
  EXPECT_NO_THROW(story.tell("log", "unheard"));
}

TEST(Story, AFileThatCannotBeOpenedIsAnError) {
  EXPECT_THROW(sim::story_t("/tmp/no/such/folder/story"), std::system_error);
}
