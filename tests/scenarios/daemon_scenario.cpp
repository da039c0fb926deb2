#include "tests/scenarios/daemon_scenario.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

namespace scenarios {
namespace {

constexpr std::chrono::milliseconds end_limit{20'000};

// Where the sanitizers of all programs of a test write, each with its process id behind the name. The name is relative,
// because a sanitizer makes the folders of a path before the library that stands for the devices is ready for that.
constexpr const char* report_folder = "/tmp";
constexpr const char* report_name = "sanitizer_report";

constexpr int outputs_with_splash = 2;

std::string leak_check_library() { return sim::program_folder() + "/libleak_check.so"; }

/// A sanitizer reads its options when a program starts, so this reaches the programs that the test will start.
void send_sanitizer_reports_to_file() {
  std::filesystem::current_path(report_folder);
  const std::string options = std::string("log_path=") + report_name;
  for (const char* variable : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS"}) {
    const char* inherited = std::getenv(variable);
    setenv(variable, inherited != nullptr ? (inherited + (":" + options)).c_str() : options.c_str(), 1);
  }
}

void expect_no_sanitizer_reports() {
  for (const auto& entry : std::filesystem::directory_iterator(report_folder)) {
    if (entry.path().filename().string().starts_with(report_name)) {
      std::ifstream file(entry.path());
      ADD_FAILURE() << std::string((std::istreambuf_iterator<char>(file)), {});
    }
  }
}

}  // namespace

std::string published_path(int output) { return output == 0 ? "/sys/hdmi1_properties" : "/sys/hdmi2_properties"; }

std::string splash_mode_path(int output) { return "/xk_splash/" + std::to_string(output) + "/mode"; }

void DaemonScenario::SetUp() {
  send_sanitizer_reports_to_file();
  appliance = std::make_unique<sim::appliance_process_t>(appliance_options());
  control = std::make_unique<sim::remote_control_t>();
}

void DaemonScenario::TearDown() {
  if (!appliance) {
    return;
  }
  if (running_daemon) {
    ASSERT_TRUE(daemon().running()) << "the daemon has ended by itself";
    // It has no end of its own making: SIGTERM's default action ends it, or the leak check that was put before it.
    const int status = daemon().stop(SIGTERM, end_limit);
    EXPECT_EQ(status, std::filesystem::exists(leak_check_library()) ? EXIT_SUCCESS : 128 + SIGTERM);
    if (HasFailure()) {
      std::cerr << "--- the system's log\n" << remote().log();
    }
  }
  EXPECT_EQ(appliance->process().stop(SIGTERM, end_limit), EXIT_SUCCESS);
  expect_no_sanitizer_reports();
}

void DaemonScenario::launch_daemon(const std::map<std::string, std::string>& environment,
                                   const std::vector<std::string>& arguments) {
  sim::daemon_process_t::options_t options;
  options.arguments = arguments;
  options.environment = environment;
  if (std::filesystem::exists(leak_check_library())) {
    options.environment["LD_PRELOAD"] = leak_check_library();
  }
  running_daemon = std::make_unique<sim::daemon_process_t>(remote(), options);
}

void DaemonScenario::start_daemon() {
  launch_daemon();
  expect_splash_ready();
}

int DaemonScenario::crash_daemon(int signal) {
  daemon().send_signal(signal);
  const std::optional<int> status = daemon().wait(end_limit);
  running_daemon.reset();
  return status.value_or(-1);
}

void DaemonScenario::expect_property(const std::string& path, const std::string& value) {
  const auto came = remote().expect_property(path, value);
  EXPECT_TRUE(came) << came.seen;
}

void DaemonScenario::expect_told(const std::string& text) {
  const auto told = remote().expect_log(text);
  EXPECT_TRUE(told) << told.seen;
}

void DaemonScenario::expect_splash_ready() {
  for (int output = 0; output < outputs_with_splash; ++output) {
    const auto ready = remote().wait_property(splash_mode_path(output),
                                              [](const std::string& mode) { return mode == "boot_splash_screen"; });
    EXPECT_TRUE(ready) << ready.seen;
  }
}

void DaemonScenario::expect_splash(int output) {
  const auto shown = remote().expect_shows(output, "splash boot_splash_screen at 1920x1080");
  EXPECT_TRUE(shown) << shown.seen;
}

void DaemonScenario::expect_dark(int output) {
  const auto shown = remote().expect_shows(output, "dark");
  EXPECT_TRUE(shown) << shown.seen;
}

void DaemonScenario::expect_disconnected(int output) {
  const auto shown = remote().expect_shows(output, "nothing connected");
  EXPECT_TRUE(shown) << shown.seen;
  expect_published(output, "disconnected");
}

void DaemonScenario::expect_published(int output, const std::string& size) {
  const auto published = remote().expect_property(published_path(output), size);
  EXPECT_TRUE(published) << published.seen;
}

}  // namespace scenarios
