// The demo as a person meets it: the program, its output, its exit status.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "sim/remote/child_process.h"
#include "sim/remote/edids.h"

using testing::ContainsRegex;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr std::chrono::seconds limit{120};

struct result_t {
  int status = -1;
  std::string output;
};

result_t run_demo(const std::vector<std::string>& arguments) {
  std::vector<std::string> command{sim::program_folder() + "/vgn-demo"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  sim::child_process_t demo(command, {{}, "/tmp/output"});
  result_t result;
  result.status = demo.wait(limit).value_or(-1);
  std::ifstream file("/tmp/output");
  std::stringstream text;
  text << file.rdbuf();
  result.output = text.str();
  return result;
}

std::string file_of(const sim::edid_bytes_t& edid) {
  std::ofstream("/tmp/given.edid", std::ios::binary)
      .write(reinterpret_cast<const char*>(edid.data()), static_cast<std::streamsize>(edid.size()));
  return "/tmp/given.edid";
}

}  // namespace

TEST(Demo, TellsOfA4KDisplayFromTheStartToTheSecondPlug) {
  const auto demo = run_demo({});
  EXPECT_EQ(demo.status, 0) << demo.output;
  EXPECT_THAT(demo.output, ContainsRegex(" -[0-9.]+  property   vgn_control reads its identity: aarch64"));
  EXPECT_THAT(demo.output, ContainsRegex(" -[0-9.]+  property   vgn_control watches /tarn/design/status"));
  EXPECT_THAT(demo.output, ContainsRegex(" -[0-9.]+  engine     client connected"));
  EXPECT_THAT(demo.output, ContainsRegex(" \\+[0-9.]+  driver     output 0: display plugged"));
  EXPECT_THAT(demo.output, ContainsRegex(" \\+[0-9.]+  daemon     .*mode=3840x2160@60"));
  EXPECT_THAT(demo.output, ContainsRegex(" \\+[0-9.]+  driver     output 0: timing 3840x2160"));
  EXPECT_THAT(demo.output, ContainsRegex(" \\+[0-9.]+  driver     output 0: display unplugged"));
  EXPECT_THAT(demo.output, HasSubstr("output 0   splash boot_splash_screen at 1920x1080"));
  EXPECT_THAT(demo.output, EndsWith("things that had to happen did.\n"));
}

TEST(Demo, ADisplayThatCannotBeUsedIsNoFailure) {
  const auto demo = run_demo({"--edid", file_of(sim::unusable_display_edid())});
  EXPECT_EQ(demo.status, 0) << demo.output;
  EXPECT_THAT(demo.output, HasSubstr("empty modes list"));
  EXPECT_THAT(demo.output, HasSubstr("output 0   dark"));
}

TEST(Demo, AnEmptyEdidIsNoFailure) {
  const auto demo = run_demo({"--edid", file_of({})});
  EXPECT_EQ(demo.status, 0) << demo.output;
  EXPECT_THAT(demo.output, HasSubstr("empty edid"));
}

TEST(Demo, TheModelWithOneOutputHasOneSplash) {
  const auto demo = run_demo({"--model", "137", "--edid", file_of(sim::full_hd_display_edid())});
  EXPECT_EQ(demo.status, 0) << demo.output;
  EXPECT_THAT(demo.output, HasSubstr("output 0   splash boot_splash_screen at 1920x1080"));
  EXPECT_THAT(demo.output, Not(HasSubstr("output 1 ")));
}

TEST(Demo, TellsOfTheFrontPanelFromTheIdKeyToTheFactoryReset) {
  const auto demo = run_demo({"--front-panel"});
  EXPECT_EQ(demo.status, 0) << demo.output;
  EXPECT_THAT(demo.output, ContainsRegex(" -[0-9.]+  panel      light: blue at 15, steady"));
  EXPECT_THAT(demo.output, ContainsRegex(" \\+[0-9.]+  panel      id key pressed"));
  EXPECT_THAT(demo.output, ContainsRegex(" \\+[0-9.]+  property   vgn_control sets /tarn/mode/id to \"on\""));
  EXPECT_THAT(demo.output, ContainsRegex(" \\+[0-9.]+  panel      light: green at 15, blinks every 1000 ms"));
  EXPECT_THAT(demo.output, ContainsRegex(" \\+[0-9.]+  panel      light: green at 5, steady"));
  EXPECT_THAT(demo.output, ContainsRegex(" \\+[0-9.]+  panel      light: green at 15, blinks every 200 ms"));
  EXPECT_THAT(demo.output, ContainsRegex(" \\+[0-9.]+  reset      script started with --level=1"));
  EXPECT_THAT(demo.output, HasSubstr("lamp         blue at 15, steady"));
  EXPECT_THAT(demo.output, EndsWith("things that had to happen did.\n"));
}

class DemoFrontPanel : public testing::TestWithParam<const char*> {};

TEST_P(DemoFrontPanel, TheLampOfTheModelBlinksAndGoesOffAgain) {
  const auto demo = run_demo({"--front-panel", "--model", GetParam()});
  EXPECT_EQ(demo.status, 0) << demo.output;
  EXPECT_THAT(demo.output, ContainsRegex(" \\+[0-9.]+  panel      light: white at 255, blinks every [0-9]+ ms"));
  EXPECT_THAT(demo.output, Not(HasSubstr("brightness setting"))) << "which this lamp does not follow";
  EXPECT_THAT(demo.output, HasSubstr("lamp         off"));
}

INSTANTIATE_TEST_SUITE_P(Models, DemoFrontPanel, testing::Values("105", "137"),
                         [](const auto& model) { return std::string("Model") + model.param; });

TEST(Demo, AFileThatCannotBeReadIsToldWithStatus2) {
  for (const char* file : {"/tmp/none", "/tmp"}) {
    const auto demo = run_demo({"--edid", file});
    EXPECT_EQ(demo.status, 2);
    EXPECT_THAT(demo.output, HasSubstr(std::string("cannot read ") + file));
  }
}

TEST(Demo, WrongUseHasStatus2) {
  EXPECT_EQ(run_demo({"--no-such-option"}).status, 2);
  EXPECT_EQ(run_demo({"--model", "1"}).status, 2);
  EXPECT_EQ(run_demo({"--front-panel", "--edid", "/tmp"}).status, 2);
  EXPECT_EQ(run_demo({"--help"}).status, 0);
}
