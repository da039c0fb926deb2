#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <tuple>

#include "sim/remote/child_process.h"
#include "test_support/crash_report.h"
#include "tests/scenarios/daemon_scenario.h"

namespace scenarios {
namespace {

using test_support::crash_report_t;
using testing::IsEmpty;
using testing::Not;

using crash_t = std::tuple<int, std::string>;  // signal, its text in the report

class Crash : public DaemonScenario, public testing::WithParamInterface<crash_t> {
 protected:
  static void expect_report(const crash_report_t& report, const std::string& signal) {
    EXPECT_EQ(report.program, sim::program_folder() + "/vgn_control");
    EXPECT_EQ(report.signal, signal);
    EXPECT_EQ(report.code, "(unknown code)") << "it was sent by a process";
    EXPECT_THAT(report.stack, Not(IsEmpty()));
  }
};

TEST_P(Crash, OfTheDaemonIsReportedInBothLogs) {
  const auto& [signal, text] = GetParam();
  std::filesystem::create_directories("/media/log");
  launch_daemon(test_support::with_sanitizers_aside());
  expect_splash_ready();
  EXPECT_EQ(crash_daemon(signal), 1);
  expect_report(test_support::only_report_in(test_support::crash_log), text);
  expect_report(test_support::only_report_in(test_support::second_crash_log), text);
}

TEST_P(Crash, OfTheDaemonLeavesTheApplianceToTheNextOne) {
  const auto& [signal, text] = GetParam();
  launch_daemon(test_support::with_sanitizers_aside());
  expect_splash_ready();
  EXPECT_EQ(crash_daemon(signal), 1);
  EXPECT_FALSE(std::filesystem::exists(test_support::crash_log)) << "without its folder";
  expect_report(test_support::only_report_in(test_support::second_crash_log), text);
  start_daemon();
  remote().plug(0, sim::full_hd_display_edid());
  expect_splash(0);
}

INSTANTIATE_TEST_SUITE_P(Signals, Crash,
                         testing::Values(crash_t{SIGSEGV, "SIGSEGV (segmentation fault)"},
                                         crash_t{SIGABRT, "SIGABRT (abnormal termination)"}));

}  // namespace
}  // namespace scenarios
