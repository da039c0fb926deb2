#include "sim/runtime_engine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "sim/test/text_of_file.h"
#include "test_support/loop_until.h"
#include "zyl/event_loop.h"

using testing::HasSubstr;

namespace {

/// The ids of processes with this name, among the entries of `proc`.
std::vector<int> processes_named(const std::string& name, const std::string& proc) {
  std::vector<int> found;
  for (const auto& entry : std::filesystem::directory_iterator(proc)) {
    if (sim::text_of_file(entry.path() / "comm") == name + "\n") {
      found.push_back(std::stoi(entry.path().filename()));
    }
  }
  return found;
}

class RuntimeEngine : public testing::Test {
 protected:
  void make() { engine.emplace(loop.base(), testbed, tree, story); }
  void run(const char* wanted) { tree.set("/sim/runtime_engine/process", wanted); }
  std::string runs() const { return tree.value("/sim/runtime_engine/process"); }

  zyl::event_loop_t loop;
  sim::property_tree_t tree;
  sim::story_t story{"/tmp/story"};
  sim::testbed_t testbed;
  std::optional<sim::runtime_engine_t> engine;
};

}  // namespace

TEST_F(RuntimeEngine, DoesNotRunAtFirst) {
  make();
  EXPECT_EQ(runs(), "0");
  EXPECT_TRUE(processes_named("runtime_engine", "/proc").empty());
}

TEST_F(RuntimeEngine, IsARealProcessOfThatName) {
  make();
  run("1");
  EXPECT_EQ(runs(), "1");
  EXPECT_EQ(processes_named("runtime_engine", "/proc").size(), 1U);
  run("1");
  EXPECT_EQ(processes_named("runtime_engine", "/proc").size(), 1U);
  run("0");
  EXPECT_EQ(runs(), "0");
  EXPECT_TRUE(processes_named("runtime_engine", "/proc").empty());
  EXPECT_THAT(sim::text_of_file("/tmp/story"), HasSubstr("\tappliance\tprocess runtime_engine ends\n"));
}

TEST_F(RuntimeEngine, TheNextOneMayHaveAnotherName) {
  make();
  tree.set("/sim/runtime_engine/name", "runtime_engine2");
  run("1");
  EXPECT_TRUE(processes_named("runtime_engine", "/proc").empty());
  EXPECT_EQ(processes_named("runtime_engine2", "/proc").size(), 1U);
}

TEST_F(RuntimeEngine, TheKernelKeepsFifteenCharactersOfTheName) {
  make();
  tree.set("/sim/runtime_engine/name", "a_name_of_seventeen");
  run("1");
  EXPECT_EQ(processes_named("a_name_of_seven", "/proc").size(), 1U);
}

TEST_F(RuntimeEngine, ANameThatCannotBeIsTold) {
  make();
  tree.set("/sim/runtime_engine/name", "no/such");
  run("1");
  EXPECT_EQ(runs(), "0");
  EXPECT_THAT(sim::text_of_file("/tmp/story"), HasSubstr("no/such"));
}

TEST_F(RuntimeEngine, OneThatIsKilledIsToldAsEnded) {
  make();
  run("1");
  const auto ids = processes_named("runtime_engine", "/proc");
  ASSERT_EQ(ids.size(), 1U);
  kill(ids[0], SIGKILL);
  EXPECT_TRUE(test_support::loop_until(loop.base(), [this] { return runs() == "0"; }));
  run("1");
  EXPECT_EQ(runs(), "1");
}

TEST_F(RuntimeEngine, EitherRunsOrNot) {
  make();
  run("1");
  run("yes");
  EXPECT_EQ(runs(), "1");
  EXPECT_EQ(processes_named("runtime_engine", "/proc").size(), 1U);
  run("0");
  run("yes");
  EXPECT_EQ(runs(), "0");
  EXPECT_THAT(sim::text_of_file("/tmp/story"), HasSubstr("process cannot be \"yes\""));
}

TEST_F(RuntimeEngine, OneThatCannotBeShownDoesNotRun) {
  std::ofstream(testbed.root() + "/proc") << "no folder";
  make();
  run("1");
  EXPECT_EQ(runs(), "0");
  EXPECT_TRUE(processes_named("runtime_engine", "/proc").empty());
}

TEST_F(RuntimeEngine, EndsWithItsOwner) {
  make();
  run("1");
  engine.reset();
  EXPECT_TRUE(processes_named("runtime_engine", "/proc").empty());
}

TEST_F(RuntimeEngine, IsFoundWhereTheEmulationHasAProcOfItsOwn) {
  const std::string proc = testbed.root() + "/proc";
  std::filesystem::create_directories(proc);
  make();
  run("1");
  EXPECT_EQ(processes_named("runtime_engine", proc).size(), 1U);
  run("0");
  EXPECT_TRUE(std::filesystem::is_empty(proc));
}
