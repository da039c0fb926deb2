#include "sim/reset_script.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "sim/remote/child_process.h"
#include "sim/reset_script_paths.h"
#include "sim/test/text_of_file.h"
#include "test_support/loop_until.h"
#include "zyl/event_loop.h"

using testing::HasSubstr;

namespace {

using child_t = sim::child_process_t;

class ResetScript : public testing::Test {
 protected:
  /// The status of one that is started now.
  int run(const std::vector<std::string>& arguments = {}) {
    child_t child(command(arguments));
    EXPECT_TRUE(test_support::loop_until(loop.base(), [&] { return !child.running(); }));
    EXPECT_TRUE(property_becomes("running", "0"));
    return child.wait({}).value_or(-1);
  }

  static std::vector<std::string> command(const std::vector<std::string>& arguments) {
    std::vector<std::string> words{sim::reset_script_path};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
  }

  bool property_becomes(const std::string& name, const std::string& value) {
    return test_support::loop_until(loop.base(), [&] { return tree.value("/sim/reset/" + name) == value; });
  }

  zyl::event_loop_t loop;
  sim::property_tree_t tree;
  sim::story_t story{"/tmp/story"};
  sim::reset_script_t script{loop.base(), tree, story};
};

}  // namespace

TEST_F(ResetScript, TellsItsArgumentsAndExitsWell) {
  EXPECT_EQ(run({"--level=1"}), 0);
  EXPECT_EQ(tree.value("/sim/reset/starts"), "1");
  EXPECT_EQ(tree.value("/sim/reset/arguments"), "--level=1");
  const std::string told = sim::text_of_file("/tmp/story");
  EXPECT_THAT(told, HasSubstr("\treset\tscript started with --level=1\n"));
  EXPECT_THAT(told, HasSubstr("\treset\tscript exits 0\n"));
}

TEST_F(ResetScript, CountsItsStarts) {
  run({"a", "b"});
  EXPECT_EQ(tree.value("/sim/reset/arguments"), "a b");
  run();
  EXPECT_EQ(tree.value("/sim/reset/arguments"), "");
  EXPECT_EQ(tree.value("/sim/reset/starts"), "2");
}

TEST_F(ResetScript, ExitsWithTheStatusThatIsWanted) {
  tree.set("/sim/reset/does", "exits 3");
  EXPECT_EQ(run(), 3);
}

TEST_F(ResetScript, DiesByTheSignalThatNobodyCanCatch) {
  tree.set("/sim/reset/does", "dies");
  EXPECT_EQ(run(), 128 + SIGKILL);
}

TEST_F(ResetScript, RunsUntilItIsEnded) {
  tree.set("/sim/reset/does", "runs");
  child_t child(command({"--level=1"}));
  EXPECT_TRUE(property_becomes("running", "1"));
  EXPECT_TRUE(child.running());
  tree.set("/sim/reset/end", "exits 4");
  EXPECT_TRUE(property_becomes("running", "0"));
  EXPECT_EQ(child.wait(std::chrono::seconds(20)), std::optional(4));
}

TEST_F(ResetScript, TwoMayRunAtOnce) {
  tree.set("/sim/reset/does", "runs");
  child_t first(command({}));
  child_t second(command({}));
  EXPECT_TRUE(property_becomes("starts", "2"));
  first.send_signal(SIGKILL);
  EXPECT_TRUE(test_support::loop_until(loop.base(), [&] { return !first.running(); }));
  EXPECT_EQ(tree.value("/sim/reset/running"), "1");
  tree.set("/sim/reset/end", "dies");
  EXPECT_TRUE(property_becomes("running", "0"));
  EXPECT_EQ(second.wait(std::chrono::seconds(20)), std::optional(128 + SIGKILL));
}

TEST_F(ResetScript, WordsThatItDoesNotKnowChangeNothing) {
  tree.set("/sim/reset/does", "exits 2");
  tree.set("/sim/reset/does", "sleeps");
  tree.set("/sim/reset/end", "sleeps");
  EXPECT_EQ(tree.value("/sim/reset/does"), "exits 2");
  EXPECT_EQ(run(), 2);
  EXPECT_THAT(sim::text_of_file("/tmp/story"), HasSubstr("script cannot \"sleeps\""));
}

TEST_F(ResetScript, IsEitherPresentOrMissing) {
  tree.set("/sim/reset/script", "gone");
  EXPECT_EQ(tree.value("/sim/reset/script"), "present");
  EXPECT_TRUE(std::filesystem::exists(sim::reset_script_path));
  tree.set("/sim/reset/script", "missing");
  tree.set("/sim/reset/script", "gone");
  EXPECT_EQ(tree.value("/sim/reset/script"), "missing");
  EXPECT_THAT(sim::text_of_file("/tmp/story"), HasSubstr("script cannot be \"gone\""));
}

TEST_F(ResetScript, TellsFromTheStartThatItCanBeEnded) {
  ASSERT_NE(tree.find("/sim/reset/end"), nullptr);
  EXPECT_EQ(tree.value("/sim/reset/end"), "");
}

TEST_F(ResetScript, AMissingOneCannotBeStarted) {
  tree.set("/sim/reset/script", "missing");
  EXPECT_FALSE(std::filesystem::exists(sim::reset_script_path));
  EXPECT_THROW(child_t{command({})}, std::system_error);
  tree.set("/sim/reset/script", "present");
  EXPECT_EQ(run(), 0);
}

TEST(ResetScriptProgram, WithoutAnApplianceItFails) {
  child_t child({sim::program_folder() + "/vgn-reset-script"}, {{}, "/tmp/output"});
  EXPECT_EQ(child.wait(std::chrono::seconds(20)), std::optional(1));
  EXPECT_THAT(sim::text_of_file("/tmp/output"), HasSubstr("no appliance"));
}

TEST(ScriptEnding, IsAStatusOrDeath) {
  for (const char* ending : {"dies", "exits 0", "exits 255"}) {
    EXPECT_TRUE(sim::is_script_ending(ending)) << ending;
  }
  for (const char* text : {"", "runs", "exits", "exits ", "exits 256", "exits -1", "exits 1 ", "dies "}) {
    EXPECT_FALSE(sim::is_script_ending(text)) << text;
  }
}
