// What bash offers, by the completion sourced into a bash of its own.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "tools/vgnctl/test/simulated_properties.h"
#include "tools/vgnctl/test/tool.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

namespace {

/// What is offered for the last of `words`, in order; a line "compopt ..." for what it asks of bash. `words` as bash
/// takes them, without the program.
std::vector<std::string> offered(const std::string& words) {
  const auto outcome = vgnctl::shell(R"(
    compopt() { echo "compopt $*"; }
    source )" VGNCTL_COMPLETION R"(
    COMP_WORDS=()" VGNCTL_PROGRAM " " +
                                     words + R"()
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    _vgnctl vgnctl "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
    for offer in "${COMPREPLY[@]}"; do echo "$offer"; done)");
  EXPECT_EQ(outcome.error, "") << words;
  std::vector<std::string> offers;
  std::istringstream lines(outcome.out);
  for (std::string line; std::getline(lines, line);) {
    offers.push_back(line);
  }
  std::sort(offers.begin(), offers.end());
  return offers;
}

class Completion : public testing::Test {
 protected:
  Completion() {
    properties.publish("/sys/config/name", "a=b");
    properties.publish("/sys/config/number", "1\n2");
    properties.publish("/sys/state", "");
    properties.publish("/tarn/mode/id", "0");
  }

  vgnctl::simulated_properties_t properties;
};

}  // namespace

TEST_F(Completion, IsRegisteredForTheTool) {
  EXPECT_EQ(vgnctl::shell("source " VGNCTL_COMPLETION "; complete -p vgnctl").out, "complete -F _vgnctl vgnctl\n");
}

TEST_F(Completion, OffersGroupsAndCommands) {
  EXPECT_THAT(offered("''"), IsSupersetOf({"edid", "property", "status"}));
  EXPECT_THAT(offered("prop"), ElementsAre("property"));
  EXPECT_THAT(offered("property ''"), ElementsAre("create", "dump", "get", "list", "monitor", "set"));
  EXPECT_THAT(offered("property mo"), ElementsAre("monitor"));
  EXPECT_THAT(offered("property x"), IsEmpty());
}

TEST_F(Completion, OffersTheOptionsOfTheCommand) {
  EXPECT_THAT(offered("-"), ElementsAre("--help"));
  EXPECT_THAT(offered("property get --"), ElementsAre("--help", "--json"));
  EXPECT_THAT(offered("property set -"), ElementsAre("--help", "--json"));
  EXPECT_THAT(offered("property dump --j"), ElementsAre("--json"));
}

TEST_F(Completion, OffersFilesForEdidsAndNamesOfTables) {
  EXPECT_THAT(offered("edid mo"), ElementsAre("mode", "modes"));
  for (const std::string command : {"report", "modes --usable", "info a.bin", "rewrite"}) {
    EXPECT_THAT(offered("edid " + command + " ''"), ElementsAre("compopt -o default")) << command;
  }
  EXPECT_THAT(offered("edid tables ''"), ElementsAre("cta", "dmt", "established", "hdmi"));
  EXPECT_THAT(offered("edid tables d"), ElementsAre("dmt"));
  EXPECT_THAT(offered("edid tables dmt ''"), IsEmpty());
  EXPECT_THAT(offered("edid mode ''"), IsEmpty());
  EXPECT_THAT(offered("edid modes --u"), ElementsAre("--unsupported", "--usable"));
}

TEST_F(Completion, OffersOptionsAndNothingElseForTheStatus) {
  EXPECT_THAT(offered("sta"), ElementsAre("status"));
  EXPECT_THAT(offered("status -"), ElementsAre("--help", "--json"));
  EXPECT_THAT(offered("status ''"), IsEmpty());
}

TEST_F(Completion, OffersPathsOfTheRunningServicePartByPart) {
  EXPECT_THAT(offered("property get ''"), ElementsAre("/", "compopt -o nospace"));
  EXPECT_THAT(offered("property get /"), ElementsAre("/sys/", "/tarn/"));
  EXPECT_THAT(offered("property get /sy"), ElementsAre("/sys/", "compopt -o nospace"));
  EXPECT_THAT(offered("property get /sys"), ElementsAre("/sys/", "compopt -o nospace"));
  EXPECT_THAT(offered("property get /sys/"), ElementsAre("/sys/config/", "/sys/state"));
  EXPECT_THAT(offered("property get /sys/config/n"), ElementsAre("/sys/config/name", "/sys/config/number"));
  EXPECT_THAT(offered("property get /sys/config/na"), ElementsAre("/sys/config/name"));
  EXPECT_THAT(offered("property get /none"), IsEmpty());
}

TEST_F(Completion, OffersPathsWhereACommandTakesThem) {
  for (const std::string command :
       {"get", "get --json", "set", "create", "list", "dump", "monitor", "monitor /a --json /b"}) {
    EXPECT_THAT(offered("property " + command + " /tarn/mode/"), ElementsAre("/tarn/mode/id")) << command;
  }
  EXPECT_THAT(offered("property get /a ''"), IsEmpty());
  EXPECT_THAT(offered("property dump /a ''"), IsEmpty());
  EXPECT_THAT(offered("property set /a ''"), ElementsAre("compopt -o default"));
}

TEST_F(Completion, QuotesPathsForTheShellAndLeavesOutThoseThatItCannotShow) {
  properties.publish("/odd/two words", "");
  properties.publish("/odd/a=b", "");
  properties.publish("/odd/new\nline", "");
  EXPECT_THAT(offered("property get /odd/"), ElementsAre("/odd/two\\ words"));
  EXPECT_THAT(offered("property get '/odd/two\\ w'"), ElementsAre("/odd/two\\ words"));
}

TEST(CompletionAlone, OffersNoPathsWithoutAService) {
  EXPECT_THAT(offered("property get /"), IsEmpty());
  EXPECT_THAT(offered("property mon"), ElementsAre("monitor"));
}
