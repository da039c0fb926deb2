// The commands as a shell runs them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "edid_lib/timing_lookup.h"
#include "test_support/edid_builder.h"
#include "tools/vgnctl/edid/edid_input.h"
#include "tools/vgnctl/edid/edid_json.h"
#include "tools/vgnctl/edid/hex_text.h"
#include "tools/vgnctl/edid/mode_json.h"
#include "tools/vgnctl/test/tool.h"

using edid_lib::cta_timing;
using edid_lib::edid_t;
using edid_lib::output_connection_filter;
using edid_lib::vid_resolution_t;
using test_support::data_block;
using test_support::edid_builder_t;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using vgnctl::json_t;
using vgnctl::run;
using vgnctl::shell;

namespace {

constexpr const char* tool = VGNCTL_PROGRAM " edid ";

std::vector<uint8_t> tv() {
  return edid_builder_t()
      .detailed(0, cta_timing(vid_resolution_t("1920x1080@60")))
      .standard(0, 0x81, 0x80)
      .cta(1, {data_block(2, {0x90, 0x05, 0x03, 0x3F}),
               data_block(3, {0x03, 0x0C, 0x00, 0x10, 0x00, 0x00, 0x3C, 0x20, 0x00, 0x60, 1, 3, 4})})
      .build();
}

std::vector<uint8_t> monitor() { return edid_builder_t().descriptor(90, 0xFC, "monitor").build(); }

/// Two displays' EDIDs as files.
class EdidCommands : public testing::Test {
 protected:
  EdidCommands() {
    vgnctl::write_file("/tmp/tv", tv());
    vgnctl::write_file("/tmp/monitor", monitor());
  }

  edid_t edid{tv()};
};

/// The JSON values of the lines of output; the command has succeeded without a word.
std::vector<json_t> values_of(const std::string& arguments) {
  const auto outcome = run("edid " + arguments);
  EXPECT_EQ(outcome.status, 0) << arguments;
  EXPECT_EQ(outcome.error, "") << arguments;
  std::vector<json_t> values;
  std::istringstream lines(outcome.out);
  for (std::string line; std::getline(lines, line);) {
    values.push_back(json_t::parse(line));
  }
  return values;
}

/// The one JSON value that a command prints.
json_t value_of(const std::string& arguments) {
  const auto values = values_of(arguments);
  EXPECT_EQ(values.size(), 1U) << arguments;
  return values.empty() ? json_t() : values.front();
}

/// The filters that refuse the modes of the TV.
std::string refusing(const std::string& options) {
  std::string names;
  const json_t report = value_of("modes --json --usable /tmp/tv " + options);
  for (const json_t& refused : report["refused"]) {
    names += refused["key"].get<std::string>() + " " + refused["filter"].get<std::string>() + "\n";
  }
  return names;
}

}  // namespace

TEST_F(EdidCommands, PrintJsonValuesOfAFile) {
  EXPECT_EQ(value_of("modes --json /tmp/tv"), vgnctl::modes_report(edid));
  EXPECT_EQ(value_of("modes --usable --json /tmp/tv"), vgnctl::usable_report(edid, output_connection_filter()));
  EXPECT_EQ(value_of("info --json /tmp/tv"), vgnctl::info_report(edid));
  edid_t filtered = output_connection_filter().filtered_edid(edid);
  EXPECT_EQ(value_of("rewrite --json /tmp/tv"), vgnctl::rewrite_report(filtered));
}

TEST_F(EdidCommands, PrintJsonValuesOfTexts) {
  EXPECT_EQ(value_of("mode --json '720x480@59.94 8:9'"), vgnctl::mode_report("720x480@59.94 8:9"));
  EXPECT_EQ(value_of("compare --json 1920x1080@60 ''"), vgnctl::comparison("1920x1080@60", ""));
  EXPECT_EQ(value_of("color --json 'color_format_t{sRGB,RGB,444,Full,30 bit}'"),
            vgnctl::color_report("color_format_t{sRGB,RGB,444,Full,30 bit}"));
  for (const std::string name : {"established", "dmt", "cta", "hdmi"}) {
    EXPECT_EQ(value_of("tables --json " + name), vgnctl::table_report(name)) << name;
  }
}

TEST_F(EdidCommands, TakeOptionsOnEitherSideOfFilesAndTexts) {
  const auto before = value_of("modes --json --usable --max 1280x1024@60 /tmp/tv");
  EXPECT_EQ(value_of("modes /tmp/tv --json --usable --max 1280x1024@60"), before);
  EXPECT_EQ(value_of("modes --usable /tmp/tv --max=1280x1024@60 --json"), before);
  EXPECT_EQ(value_of("mode 1x1@60 --json"), value_of("mode --json 1x1@60"));
  EXPECT_EQ(value_of("compare 1x1@60 --json 2x2@60"), value_of("compare --json 1x1@60 2x2@60"));
  EXPECT_EQ(value_of("tables hdmi --json"), value_of("tables --json hdmi"));
}

TEST_F(EdidCommands, PrintAValueALineForSeveralFiles) {
  edid_t other(monitor());
  EXPECT_THAT(values_of("info --json /tmp/tv /tmp/monitor /tmp/tv"),
              ElementsAre(vgnctl::info_report(edid), vgnctl::info_report(other), vgnctl::info_report(edid)));
}

TEST_F(EdidCommands, PrintNullForAFileThatCannotBeReadAndGoOn) {
  for (const std::string command : {"modes", "modes --usable", "info", "rewrite"}) {
    const auto outcome = run("edid " + command + " --json /tmp/none /tmp/tv /tmp");
    EXPECT_EQ(outcome.status, 1) << command;
    EXPECT_EQ(outcome.error, "vgnctl: /tmp/none: No such file or directory\nvgnctl: /tmp: Is a directory\n");
    EXPECT_THAT(outcome.out, AllOf(StartsWith("null\n{\"valid\":true,"), EndsWith("}\nnull\n"))) << command;
  }
}

TEST_F(EdidCommands, PrintNothingWithoutJsonForAFileThatCannotBeRead) {
  for (const std::string command : {"report", "modes", "info", "rewrite"}) {
    const auto outcome = run("edid " + command + " /tmp/none");
    EXPECT_EQ(outcome.status, 1) << command;
    EXPECT_EQ(outcome.out, "") << command;
    EXPECT_EQ(outcome.error, "vgnctl: /tmp/none: No such file or directory\n");
  }
}

TEST_F(EdidCommands, ReadStandardInput) {
  EXPECT_EQ(shell(std::string(tool) + "info --json - </tmp/tv").out, run("edid info --json /tmp/tv").out);
  EXPECT_EQ(shell(std::string(tool) + "modes --json /tmp/monitor - /tmp/monitor </tmp/tv").out,
            run("edid modes --json /tmp/monitor /tmp/tv /tmp/monitor").out);
  EXPECT_EQ(shell(std::string(tool) + "modes --json - </dev/null").out, "{\"valid\":false,\"modes\":[]}\n");
}

TEST_F(EdidCommands, ReadHexTextUnlessToldThatFilesAreRaw) {
  const std::string text = vgnctl::hex_lines(tv());
  vgnctl::write_file("/tmp/hex", {text.begin(), text.end()});
  EXPECT_EQ(value_of("info --json /tmp/hex"), vgnctl::info_report(edid));
  EXPECT_EQ(value_of("info --raw --json /tmp/tv"), vgnctl::info_report(edid));
  edid_t raw(std::vector<uint8_t>(text.begin(), text.end()));
  EXPECT_EQ(value_of("info --raw --json /tmp/hex"), vgnctl::info_report(raw));
}

TEST_F(EdidCommands, HaveNoErrorsForTextsThatAreNoModeInJson) {
  EXPECT_EQ(value_of("mode --json 1920x@60")["error"], "invalid_argument");
  EXPECT_EQ(value_of("mode --json 99999999999x1@60")["error"], "out_of_range");
  EXPECT_EQ(value_of("compare --json 1x1@60 ax1@60")["error"], "invalid_argument");
  EXPECT_TRUE(value_of("color --json red").at("fields").is_null());
}

TEST_F(EdidCommands, FailForPeopleForTextsThatAreNoMode) {
  const auto mode = run("edid mode 1920x@60");
  EXPECT_EQ(mode.status, 1);
  EXPECT_EQ(mode.out, "");
  EXPECT_EQ(mode.error, "vgnctl: \"1920x@60\" is no mode: its size is no number\n");
  EXPECT_THAT(run("edid compare 1x1@60 1x99999999999@60").error, EndsWith("is no mode: its size is out of range\n"));
  EXPECT_THAT(run("edid color red").error, StartsWith("vgnctl: \"red\" is no colour format"));
}

TEST_F(EdidCommands, TakeModesThatBeginWithAMinus) {
  EXPECT_EQ(value_of("mode --json -- -1x1@60")["mode"]["width"], -1);
  EXPECT_EQ(value_of("mode --json -1x1@60")["mode"]["width"], -1);
}

TEST_F(EdidCommands, HaveTheChainOfTheDaemonUnlessToldOtherwise) {
  EXPECT_EQ(refusing(""),
            "1920x1080i@60 Interlaced Filter\n"
            "1920x1080i@29.97 Interlaced Filter\n"
            "720x480@59.94 32:27 Non Square Pixel Filter\n"
            "1920x1080@120 Max FPS Filter\n"
            "1920x1080@119.88 Max FPS Filter\n"
            "4096x2160@24 Max Resolution Filter\n");
  EXPECT_EQ(refusing("--max 3840x2160@60 --min 640x480@59.94 --direction 0"), refusing(""));
}

TEST_F(EdidCommands, LetTheOptionsChangeTheChain) {
  EXPECT_THAT(refusing("--allow-interlaced"), Not(HasSubstr("Interlaced Filter")));
  EXPECT_THAT(refusing("--allow-non-square"), Not(HasSubstr("Non Square")));
  EXPECT_THAT(refusing("--max 4096x2160@60"), Not(HasSubstr("Max Resolution")));
  EXPECT_THAT(refusing("--max 1920x1080@60"), HasSubstr("3840x2160@30 Max Resolution Filter\n"));
  EXPECT_THAT(refusing("--min 1920x1080@60"), HasSubstr("1280x1024@60 Min Resolution Filter\n"));
}

TEST_F(EdidCommands, LetTheDirectionAddItsFilters) {
  EXPECT_THAT(refusing("--direction 1 --allow-non-square"),
              HasSubstr("720x480@59.94 32:27 Tarn Video Endpoint HW Input Filter\n"));
  EXPECT_THAT(refusing("--direction 2 --allow-interlaced --allow-non-square"),
              Not(HasSubstr("Tarn Video Endpoint Unsupported")));
  const std::string unsupported = "--unsupported 1280x1024@60 --unsupported 3840x2160@30";
  EXPECT_EQ(refusing(unsupported), refusing("")) << "on the output side only";
  EXPECT_THAT(refusing("--direction 2 " + unsupported),
              AllOf(HasSubstr("3840x2160@30 Tarn Video Endpoint Unsupported Resolutions Filter\n"),
                    HasSubstr("1280x1024@60 Tarn Video Endpoint Unsupported Resolutions Filter\n")));
}

TEST_F(EdidCommands, LetTheOptionsChangeReportAndRewriting) {
  EXPECT_THAT(run("edid report /tmp/tv").out, HasSubstr("  4096x2160p24: refused by Max Resolution Filter\n"));
  EXPECT_THAT(run("edid report --max 4096x2160@60 /tmp/tv").out, HasSubstr("  4096x2160p24: accepted\n"));
  EXPECT_EQ(value_of("rewrite --json /tmp/tv")["hdmi_vics"], json_t::parse("[[1, 3]]"));
  EXPECT_EQ(value_of("rewrite --json --max 4096x2160@60 /tmp/tv")["hdmi_vics"], json_t::parse("[[1, 3, 4]]"));
}

TEST_F(EdidCommands, ReportWhatTheRendererAndTheChainSay) {
  EXPECT_EQ(run("edid report /tmp/tv").out, output_connection_filter().report(edid));
}

TEST_F(EdidCommands, NameTheFileAboveItsTextWhereThereAreSeveral) {
  EXPECT_THAT(run("edid info /tmp/tv").out, StartsWith("  Valid "));
  EXPECT_THAT(run("edid info /tmp/tv /tmp/monitor").out,
              AllOf(StartsWith("==> /tmp/tv <==\n  Valid "), HasSubstr("\n\n==> /tmp/monitor <==\n  Valid ")));
}

TEST_F(EdidCommands, PrintListsForPeople) {
  EXPECT_THAT(
      run("edid modes /tmp/tv").out,
      StartsWith("1920x1080p60 (preferred)     1920x1080@60          CTA Timing, Detailed Timing Descriptor\n"));
  EXPECT_THAT(run("edid modes --usable /tmp/tv").out,
              HasSubstr("\n\n1920x1080i60                 1920x1080i@60         refused by Interlaced Filter\n"));
  EXPECT_THAT(run("edid tables hdmi").out, StartsWith("3840x2160@24 "));
  EXPECT_EQ(run("edid compare 1x1@60 1x1@50").out, "1x1@60 is greater than 1x1@50\n");
  EXPECT_EQ(run("edid color 'COLOR_FORMAT_T{srgb}'").out, "color_format_t{sRGB,Default,Default,Default,Default}\n");
  EXPECT_THAT(run("edid mode 1x1@60").out, StartsWith("1x1p60\n"));
}

TEST_F(EdidCommands, RewriteIntoAFileThatReadsAsTheFilteredEdid) {
  EXPECT_EQ(run("edid rewrite /tmp/tv -o /tmp/filtered").out, "");
  const edid_t filtered = output_connection_filter().filtered_edid(edid);
  const std::string written = vgnctl::read_file("/tmp/filtered");
  const std::vector<uint8_t> bytes(written.begin(), written.end());
  EXPECT_EQ(bytes, filtered.assemble());
  EXPECT_EQ(edid_lib::checksum_of(bytes, 127), bytes[127]);
  EXPECT_EQ(edid_lib::checksum_of(std::span(bytes).subspan(128), 127), bytes[255]);
  EXPECT_EQ(value_of("modes --json /tmp/filtered")["modes"], value_of("rewrite --json /tmp/tv")["modes"]);
  EXPECT_EQ(value_of("modes --usable --json /tmp/filtered")["refused"], json_t::array());
}

TEST_F(EdidCommands, RewriteToStandardOutputAsHexTextOrBytes) {
  const edid_t filtered = output_connection_filter().filtered_edid(edid);
  EXPECT_EQ(run("edid rewrite /tmp/tv").out, vgnctl::hex_lines(filtered.assemble()));
  const auto bytes = filtered.assemble();
  EXPECT_EQ(run("edid rewrite /tmp/tv -o -").out, std::string(bytes.begin(), bytes.end()));
  EXPECT_EQ(shell(std::string(tool) + "rewrite /tmp/tv | " + tool + "modes --json -").out,
            shell(std::string(tool) + "rewrite /tmp/tv -o - | " + tool + "modes --json -").out);
}

TEST_F(EdidCommands, RewriteFailsWhereTheFileCannotBeWritten) {
  const auto outcome = run("edid rewrite /tmp/tv -o /tmp/none/out");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.error, "vgnctl: /tmp/none/out: No such file or directory\n");
}

TEST_F(EdidCommands, RewriteHasNoValueWhereTheFileCannotBeWritten) {
  const auto outcome = run("edid rewrite --json /tmp/tv -o /tmp/none/out");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.error, "vgnctl: /tmp/none/out: No such file or directory\n");
  const auto written = run("edid rewrite --json /tmp/tv -o /tmp/filtered");
  EXPECT_EQ(written.status, 0);
  EXPECT_EQ(written.out, run("edid rewrite --json /tmp/tv").out);
}

TEST_F(EdidCommands, BadUsageIsStatusTwoWithoutOutput) {
  for (const char* arguments : {"",
                                "modes",
                                "info",
                                "report",
                                "rewrite",
                                "mode",
                                "compare 1x1@60",
                                "color",
                                "tables",
                                "tables gtf",
                                "report --json /tmp/tv",
                                "modes --max 1x1@60 /tmp/tv",
                                "modes --allow-interlaced /tmp/tv",
                                "modes --usable --max ax1@60 /tmp/tv",
                                "modes --usable --min 1x99999999999@60 /tmp/tv",
                                "modes --usable --unsupported ax1@60 /tmp/tv",
                                "modes --usable --direction 3 /tmp/tv",
                                "modes --usable --direction out /tmp/tv",
                                "rewrite /tmp/tv /tmp/monitor -o /tmp/filtered",
                                "rewrite --json -o - /tmp/tv",
                                "rewrite /tmp/tv -o - --json",
                                "info - -",
                                "modes - /tmp/tv -",
                                "mode 1x1@60 2x2@60",
                                "show /tmp/tv"}) {
    const auto outcome = run("edid " + std::string(arguments));
    EXPECT_EQ(outcome.status, 2) << arguments;
    EXPECT_EQ(outcome.out, "") << arguments;
    EXPECT_THAT(outcome.error, AllOf(StartsWith("vgnctl: "), HasSubstr("\nSee vgnctl edid"), EndsWith(" --help\n")))
        << arguments;
  }
}

TEST_F(EdidCommands, TellWhatTheStandardStreamsCannotDoAtOnce) {
  EXPECT_THAT(run("edid rewrite --json -o - /tmp/tv").error,
              StartsWith("vgnctl: --output: standard output is for the value of --json\n"));
  EXPECT_THAT(run("edid report - -").error, StartsWith("vgnctl: FILE: \"-\" is there more than once\n"));
}

TEST_F(EdidCommands, NameTheOptionWhoseModeIsNone) {
  EXPECT_THAT(run("edid rewrite --min ax1@60 /tmp/tv").error, StartsWith("vgnctl: --min: \"ax1@60\" is no mode\n"));
}

TEST_F(EdidCommands, HelpHasExamplesAndFitsAPlainTerminal) {
  for (const std::string command : {"report", "modes", "info", "rewrite", "mode", "compare", "color", "tables"}) {
    const auto outcome = run("edid " + command + " --help");
    EXPECT_EQ(outcome.status, 0) << command;
    EXPECT_THAT(outcome.out, AllOf(HasSubstr("Usage: vgnctl edid " + command), HasSubstr("\nExamples:"),
                                   HasSubstr("\n  vgnctl edid " + command)))
        << command;
  }
  EXPECT_EQ(shell("for c in '' report modes info rewrite mode compare color tables; do " + std::string(tool) +
                  "$c --help; done | grep -E '.{81}'")
                .out,
            "");
}

TEST_F(EdidCommands, OutputThatCannotBeWrittenIsAFailure) {
  for (const char* arguments : {"info /tmp/tv", "modes --json /tmp/tv", "tables cta", "rewrite -o - /tmp/tv"}) {
    const auto outcome = run("edid " + std::string(arguments) + " >/dev/full");
    EXPECT_EQ(outcome.status, 1) << arguments;
    EXPECT_EQ(outcome.error, "vgnctl: standard output takes nothing more\n") << arguments;
  }
}
