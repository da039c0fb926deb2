#include "sim/attribute_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "sim/remote/child_process.h"
#include "sim/test/text_of_file.h"
#include "test_support/loop_until.h"
#include "zyl/event_loop.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

constexpr const char* root = "/tmp/root";

class AttributeFiles : public testing::Test {
 protected:
  AttributeFiles() { std::filesystem::create_directory(root); }

  /// Lets a shell run beside the loop, in the files' folder, until it has ended and `count` texts have come.
  void run(const std::string& script, std::size_t count) {
    sim::child_process_t shell({"sh", "-ec", "cd /tmp/root; " + script});
    EXPECT_TRUE(test_support::loop_until(loop.base(), [&] { return !shell.running() && written.size() >= count; }));
    EXPECT_EQ(shell.wait({}), std::optional(0));
  }

  zyl::event_loop_t loop;
  std::vector<std::pair<std::string, std::string>> written;
  sim::attribute_files_t files{loop.base(), root, [this](const std::string& path, const std::string& text) {
                                 written.emplace_back(path, text);
                               }};
};

}  // namespace

TEST_F(AttributeFiles, AreEmptyFilesThatExist) {
  files.add("/sys/class/leds/x/brightness");
  EXPECT_TRUE(std::filesystem::is_regular_file("/tmp/root/sys/class/leds/x/brightness"));
  EXPECT_EQ(std::filesystem::file_size("/tmp/root/sys/class/leds/x/brightness"), 0U);
}

TEST_F(AttributeFiles, GiveTheTextThatIsWritten) {
  files.add("/a/b");
  run("echo 255 >a/b", 1);
  EXPECT_THAT(written, ElementsAre(Pair("/a/b", "255\n")));
}

TEST_F(AttributeFiles, AShortTextOverALongOneStandsAlone) {
  files.add("/a");
  run("printf 255 1<>a; printf 0 1<>a; printf 15 >a", 3);
  EXPECT_THAT(written, ElementsAre(Pair("/a", "255"), Pair("/a", "0"), Pair("/a", "15")));
}

TEST_F(AttributeFiles, NoneOfManyWritesIsLostAndAllKeepTheirOrder) {
  constexpr int rounds = 100;
  files.add("/a");
  files.add("/b");
  run("i=0; while [ $i -lt 100 ]; do printf $i 1<>a; printf x$i >a; printf $i 1<>b; i=$((i + 1)); done",
      std::size_t{3} * rounds);
  decltype(written) expected;
  for (int i = 0; i < rounds; ++i) {
    expected.emplace_back("/a", std::to_string(i));
    expected.emplace_back("/a", "x" + std::to_string(i));
    expected.emplace_back("/b", std::to_string(i));
  }
  EXPECT_EQ(written, expected);
}

TEST_F(AttributeFiles, WhatIsWrittenInPiecesIsOneText) {
  files.add("/a");
  run("{ printf '0 '; printf 500; } >a", 1);
  EXPECT_THAT(written, ElementsAre(Pair("/a", "0 500")));
}

TEST_F(AttributeFiles, AnOpenThatWritesNothingIsNoText) {
  files.add("/a");
  run(": >a; : 1<>a; printf 1 >a", 1);
  EXPECT_THAT(written, ElementsAre(Pair("/a", "1")));
}

TEST_F(AttributeFiles, ReadingNeedsNobodysLeave) {
  files.add("/a");
  EXPECT_EQ(sim::text_of_file("/tmp/root/a"), "");
  EXPECT_THAT(written, IsEmpty());
}

TEST_F(AttributeFiles, CanBeTakenAwayAndBroughtBack) {
  files.add("/led/a");
  files.add("/led/b");
  files.remove("/led/a");
  files.remove("/led/a");
  EXPECT_FALSE(std::filesystem::exists("/tmp/root/led/a"));
  EXPECT_TRUE(std::filesystem::exists("/tmp/root/led/b"));
  files.add("/led/a");
  run("printf 1 >led/a", 1);
  EXPECT_THAT(written, ElementsAre(Pair("/led/a", "1")));
}

TEST_F(AttributeFiles, OneThatIsTakenAwayWhileItIsOpenIsNotHeard) {
  files.add("/a");
  std::filesystem::create_directory("/tmp/steps");
  sim::child_process_t shell({"sh", "-ec",
                              "{ mkdir /tmp/steps/open; while [ ! -d /tmp/steps/removed ]; do :; done; printf 1; }"
                              " >/tmp/root/a"});
  EXPECT_TRUE(test_support::loop_until(loop.base(), [] { return std::filesystem::exists("/tmp/steps/open"); }));
  files.remove("/a");
  files.add("/a");
  std::filesystem::create_directory("/tmp/steps/removed");
  EXPECT_TRUE(test_support::loop_until(loop.base(), [&] { return !shell.running(); }));
  EXPECT_EQ(shell.wait({}), std::optional(0));
  run("printf 2 >a", 1);
  EXPECT_THAT(written, ElementsAre(Pair("/a", "2")));
}

TEST_F(AttributeFiles, OneThatIsTakenAwayLetsThoseInWhoWaitForIt) {
  files.add("/a");
  sim::child_process_t shell({"sh", "-c", "mkdir /tmp/about_to_open; printf 1 >/tmp/root/a"});
  while (!std::filesystem::exists("/tmp/about_to_open")) {
    ASSERT_TRUE(shell.running());
  }
  files.remove("/a");
  EXPECT_TRUE(test_support::loop_until(loop.base(), [&] { return !shell.running(); }));
  EXPECT_THAT(written, IsEmpty());
}

TEST_F(AttributeFiles, NothingStaysOpenOfThoseThatAreTakenAway) {
  const auto open_files = [] {
    const std::filesystem::directory_iterator entries("/proc/self/fd");
    return std::distance(begin(entries), end(entries));
  };
  const auto before = open_files();
  for (int i = 0; i < 10; ++i) {
    files.add("/a");
    files.remove("/a");
  }
  EXPECT_EQ(open_files(), before);
}

TEST_F(AttributeFiles, NobodyCanMakeAFileWhereTheLastOneWas) {
  files.add("/led/a");
  files.remove("/led/a");
  EXPECT_FALSE(std::ofstream("/tmp/root/led/a").is_open());
}
