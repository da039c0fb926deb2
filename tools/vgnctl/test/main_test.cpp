#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "sim/property_tree.h"
#include "sim/status_files.h"
#include "sim/story.h"
#include "sim/testbed.h"
#include "tools/vgnctl/test/simulated_properties.h"
#include "tools/vgnctl/test/tool.h"
#include "zyl/event_loop.h"

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using vgnctl::run;
using vgnctl::shell;

TEST(Vgnctl, BadUsageIsStatusTwoWithAMessageAndAHint) {
  for (const char* arguments : {"",
                                "property",
                                "property get",
                                "property get ''",
                                "property get /a /b",
                                "property get --json",
                                "property set",
                                "property set /a",
                                "property set /a 1 2",
                                "property set '' 1",
                                "property create",
                                "property create /a /b",
                                "property list",
                                "property list ''",
                                "property list /a /b",
                                "property monitor",
                                "property monitor /a ''",
                                "property dump ''",
                                "property dump /a /b",
                                "property unset /a",
                                "propriety get /a",
                                "status now",
                                "status --xml",
                                "--loud",
                                "property get --loud /a"}) {
    const auto outcome = run(arguments);
    EXPECT_EQ(outcome.status, 2) << arguments;
    EXPECT_EQ(outcome.out, "") << arguments;
    EXPECT_THAT(outcome.error, AllOf(StartsWith("vgnctl: "), HasSubstr("\nSee vgnctl"), EndsWith(" --help\n")))
        << arguments;
  }
}

TEST(Vgnctl, HintNamesTheCommandThatTheLineHasGotTo) {
  EXPECT_THAT(run("").error, EndsWith("\nSee vgnctl --help\n"));
  EXPECT_THAT(run("property").error, EndsWith("\nSee vgnctl property --help\n"));
  EXPECT_THAT(run("property set /a").error, EndsWith("\nSee vgnctl property set --help\n"));
}

TEST(Vgnctl, UnknownCommandIsNamed) {
  EXPECT_THAT(run("propriety get").error, StartsWith("vgnctl: there is no command \"propriety\"\n"));
  EXPECT_THAT(run("property unset /a").error, StartsWith("vgnctl: there is no command \"unset\"\n"));
  EXPECT_THAT(run("property").error, StartsWith("vgnctl: A subcommand is required\n"));
}

TEST(Vgnctl, HelpOfEachCommandIsNoFailureAndTellsExamplesAndExitStatuses) {
  const auto overview = run("--help");
  EXPECT_EQ(overview.status, 0);
  EXPECT_THAT(overview.out, AllOf(HasSubstr("\n  property "), HasSubstr("\n  edid "), HasSubstr("\n  status "),
                                  HasSubstr("Exit status:")));
  EXPECT_EQ(overview.error, "");
  const auto group = run("property --help");
  EXPECT_EQ(group.status, 0);
  EXPECT_THAT(group.out, AllOf(HasSubstr("\n  monitor "), HasSubstr("Examples:"), HasSubstr("Exit status:")));
  for (const std::string command : {"get", "set", "create", "list", "monitor", "dump"}) {
    const auto outcome = run("property " + command + " --help");
    EXPECT_EQ(outcome.status, 0) << command;
    EXPECT_THAT(outcome.out, AllOf(HasSubstr("Usage: vgnctl property " + command), HasSubstr("\nExample"),
                                   HasSubstr("\n  vgnctl property " + command)))
        << command;
  }
}

TEST(Vgnctl, HelpFitsAPlainTerminal) {
  const auto outcome =
      shell("for c in '' status property 'property '{get,set,create,list,monitor,dump}; do " VGNCTL_PROGRAM
            " $c --help; done | grep -E '.{81}'");
  EXPECT_EQ(outcome.out, "");
}

TEST(Vgnctl, OutputThatCannotBeWrittenIsAFailure) {
  vgnctl::simulated_properties_t properties;
  properties.publish("/a", "1");
  for (const char* arguments : {"--help", "property get /a", "property dump", "edid tables cta"}) {
    const auto outcome = run(std::string(arguments) + " >/dev/full");
    EXPECT_EQ(outcome.status, 1) << arguments;
    EXPECT_EQ(outcome.error, "vgnctl: standard output takes nothing more\n");
  }
}

TEST(Vgnctl, StatusThatCannotBeWrittenIsAFailure) {
  const sim::testbed_t machine;
  zyl::event_loop_t loop;
  sim::property_tree_t tree;
  sim::story_t story;
  const sim::status_files_t files(loop.base(), machine.root(), tree, story);
  std::string variables = "ASAN_OPTIONS=$ASAN_OPTIONS:verify_asan_link_order=0 ";
  for (const auto& [name, value] : machine.environment()) {
    variables.append(name).append("=").append(value).append(" ");
  }
  for (const char* command : {"status", "status --json"}) {
    const auto outcome = shell(variables + VGNCTL_PROGRAM + " " + command + " >/dev/full");
    EXPECT_EQ(outcome.status, 1) << command;
    EXPECT_EQ(outcome.error, "vgnctl: standard output takes nothing more\n") << command;
  }
}
