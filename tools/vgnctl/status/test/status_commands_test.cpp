#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <utility>

#include "sim/ktm5030.h"
#include "sim/status_files.h"
#include "sim/testbed.h"
#include "tools/vgnctl/test/tool.h"
#include "zyl/event_loop.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

using file_state_t = std::pair<std::filesystem::file_time_type, std::string>;

std::string content(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

/// vgnctl on a machine that has what is in a testbed and nothing else.
class StatusCommand : public testing::Test {
 protected:
  vgnctl::outcome_t run(const std::string& arguments) const {
    std::string command = "ASAN_OPTIONS=$ASAN_OPTIONS:verify_asan_link_order=0";
    for (const auto& [name, value] : bed.environment()) {
      command.append(" ").append(name).append("=").append(value);
    }
    return vgnctl::shell(command + " " VGNCTL_PROGRAM " " + arguments);
  }

  static std::string story_told() { return content("/tmp/story"); }

  /// All files below the machine's /sys: when each was last changed, and what it holds.
  std::map<std::string, file_state_t> machine_files() const {
    std::map<std::string, file_state_t> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(bed.root() + "/sys")) {
      if (entry.is_regular_file()) {
        files[entry.path()] = {entry.last_write_time(), content(entry.path())};
      }
    }
    return files;
  }

  sim::testbed_t bed;
};

/// The simulated appliance's board.
class StatusOfAppliance : public StatusCommand {
 protected:
  zyl::event_loop_t loop;
  sim::property_tree_t tree;
  sim::story_t story{"/tmp/story"};
  sim::status_files_t files{loop.base(), bed.root(), tree, story};
  sim::ktm5030_t device{loop.base(), bed, tree, story, true};
};

std::string lines_of(const std::string& value, const std::string& text) {
  std::string found;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    found += line.ends_with(value) ? "x" : "";
  }
  return found;
}

}  // namespace

TEST_F(StatusOfAppliance, IsATable) {
  const auto outcome = run("status");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.error, "");
  EXPECT_EQ(outcome.out,
            "board_temperature_a  41.5    °C\n"
            "board_temperature_b  38.25   °C\n"
            "pl_temperature       46.955  °C\n"
            "ps_temperature       48.898  °C\n"
            "vccaux14_a           12.0    V\n"
            "vccaux14_b           4.936   V\n"
            "vccaux15             3.3     V\n"
            "fan_speed            3150    turns a minute\n"
            "fan_pwm              128     of 255\n"
            "fan_ramp_rate        16      of 255\n"
            "power_source         3       PoE class 4\n"
            "aux_status           0\n"
            "poe_status           1\n"
            "poe_class            4\n"
            "board_id             2\n"
            "product_id           1\n"
            "ktm5030_mode         0\n"
            "ktm5030_mode_byte    0\n"
            "ktm5030_info         0 0 0\n");
}

TEST_F(StatusOfAppliance, IsAJsonObject) {
  const auto outcome = run("status --json");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.error, "");
  EXPECT_EQ(outcome.out,
            R"({"board_temperature_a":41.5,"board_temperature_b":38.25,"pl_temperature":46.955,)"
            R"("ps_temperature":48.898,"vccaux14_a":12.0,"vccaux14_b":4.936,"vccaux15":3.3,"fan_speed":3150,)"
            R"("fan_pwm":128,"fan_ramp_rate":16,"power_source":3,"aux_status":"0","poe_status":"1","poe_class":"4",)"
            R"("board_id":"2","product_id":"1","ktm5030_mode":0,"ktm5030_mode_byte":0,"ktm5030_info":[0,0,0]})"
            "\n");
}

TEST_F(StatusOfAppliance, IsReadWithoutChangingAnything) {
  const auto files_before = machine_files();
  const std::string story_before = story_told();
  EXPECT_GE(files_before.size(), 19U);
  EXPECT_EQ(run("status").status, 0);
  EXPECT_EQ(machine_files(), files_before);
  EXPECT_EQ(story_told(), story_before);
}

TEST_F(StatusOfAppliance, TellsAnEmptyLineByQuotationMarks) {
  tree.set("/sim/hardware/board_id", "\n");
  EXPECT_THAT(run("status").out, HasSubstr("\nboard_id             \"\"\n"));
}

TEST_F(StatusOfAppliance, LeavesOutWhatTheBoardDoesNotTell) {
  tree.set("/sim/hardware/fan1_input", "absent");
  tree.set("/sim/hardware/board_id", "");
  tree.set("/sim/ktm5030/device", "absent");
  const auto table = run("status");
  EXPECT_EQ(table.status, 0);
  EXPECT_THAT(table.out, AllOf(HasSubstr("\nfan_speed            not available\n"),
                               HasSubstr("\nboard_id             not available\n"),
                               HasSubstr("\nktm5030_info         not available\n")));
  const auto object = nlohmann::json::parse(run("status --json").out);
  EXPECT_EQ(object["fan_speed"], nullptr);
  EXPECT_EQ(object["board_id"], nullptr);
  EXPECT_EQ(object["ktm5030_mode"], nullptr);
  EXPECT_EQ(object["fan_pwm"], 128);
}

TEST_F(StatusOfAppliance, OneAvailableItemIsEnough) {
  for (const auto& [path, content] : tree.below("/sim/hardware")) {
    tree.set(path, "absent");
  }
  const auto outcome = run("status");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, HasSubstr("\nktm5030_mode         0\n"));
}

TEST_F(StatusCommand, WithoutAnythingTellsSoWithStatusOne) {
  const auto table = run("status");
  EXPECT_EQ(table.status, 1);
  EXPECT_EQ(table.error, "vgnctl: this machine tells nothing about its hardware\n");
  EXPECT_EQ(lines_of(" not available", table.out), std::string(19, 'x'));
  EXPECT_THAT(table.out, StartsWith("board_temperature_a  not available\n"));
}

TEST_F(StatusCommand, WithoutAnythingIsAnObjectOfNulls) {
  const auto outcome = run("status --json");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.error, "vgnctl: this machine tells nothing about its hardware\n");
  const auto object = nlohmann::json::parse(outcome.out);
  EXPECT_EQ(object.size(), 19U);
  for (const auto& [key, value] : object.items()) {
    EXPECT_EQ(value, nullptr) << key;
  }
}

TEST_F(StatusCommand, HelpTellsEveryNameAndTheExitStatuses) {
  const std::string help = run("status --help").out;
  EXPECT_THAT(help, AllOf(HasSubstr("Examples:"), HasSubstr("\nExit status:")));
  const auto object = nlohmann::json::parse(run("status --json").out);
  for (const auto& [key, value] : object.items()) {
    EXPECT_THAT(help, testing::ContainsRegex("[ ,\n]" + key + "[ ,\n]")) << key;
  }
}
