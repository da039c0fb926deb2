#include "app/vgn_control_main.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "test_support/fake_property_service.h"
#include "test_support/fake_syslog.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

/// The program, started in a child process; its standard output and standard error go to one file.
class program_t {
 public:
  explicit program_t(std::vector<std::string> arguments) : child(fork()) {
    if (child == 0) {
      run(std::move(arguments));
    }
  }
  ~program_t() {
    if (child > 0) {
      kill(child, SIGKILL);
      waitpid(child, nullptr, 0);
    }
  }

  program_t(const program_t&) = delete;
  program_t& operator=(const program_t&) = delete;

  // Waits for its end; the exit code, or -1 if a signal ended it.
  int exit_code() {
    int status = 0;
    waitpid(child, &status, 0);
    child = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  // The signal that ended it after it was sent `signal`, 0 if none did.
  int end_by(int signal) {
    kill(child, signal);
    int status = 0;
    waitpid(child, &status, 0);
    child = -1;
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  }

  static std::string output() {
    std::ostringstream text;
    text << std::ifstream(output_file).rdbuf();
    return text.str();
  }

 private:
  static constexpr const char* output_file = "/tmp/output";

  [[noreturn]] static void run(std::vector<std::string> arguments) {
    const int file = open(output_file, O_CREAT | O_TRUNC | O_WRONLY, 0600);
    dup2(file, STDOUT_FILENO);
    dup2(file, STDERR_FILENO);
    arguments.insert(arguments.begin(), "vgn_control");
    std::vector<char*> argv;
    for (auto& argument : arguments) {
      argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    std::exit(vgn_control::vgn_control_main(static_cast<int>(arguments.size()), argv.data()));
  }

  pid_t child;
};

TEST(VgnControlMain, HelpTellsTheOptionsAndEndsWell) {
  program_t program({"--help"});
  EXPECT_EQ(program.exit_code(), 0);
  EXPECT_THAT(program_t::output(),
              AllOf(HasSubstr("VGN control application"), HasSubstr("-h, --help"), HasSubstr("-i, --input <input>"),
                    HasSubstr("Path to the input device."), HasSubstr("-v, --verbose"), HasSubstr("verbose logging"),
                    Not(HasSubstr("--version"))));
}

TEST(VgnControlMain, AnUnknownOptionEndsIt) {
  program_t program({"--unknown"});
  EXPECT_EQ(program.exit_code(), 1);
  EXPECT_THAT(program_t::output(), HasSubstr("Unknown option 'unknown'."));
}

TEST(VgnControlMain, AnInputWithoutItsValueEndsIt) {
  program_t program({"--input"});
  EXPECT_EQ(program.exit_code(), 1);
  EXPECT_THAT(program_t::output(), HasSubstr("Missing value after '--input'."));
}

/// The program with its video functions blocked: it takes no more than a bus.
class VgnControlMainRunning : public testing::Test {
 protected:
  VgnControlMainRunning() { setenv("VGN_CONTROL_BLOCK", "1", 1); }

  bool starts() { return service.hears({"set", "/vgn_ui/vgn_ui_control", "0"}); }

  std::string logged() {
    std::string all;
    for (const auto& line : syslog.take()) {
      all += line + "\n";
    }
    return all;
  }

  test_support::fake_syslog_t syslog;
  test_support::fake_property_service_t service;
};

constexpr const char* blocked_line =
    "vgn_control: disable_vgn_ui_control detected. vgn_control video functions was disabled permanently.";

TEST_F(VgnControlMainRunning, RunsUntilASignalEndsIt) {
  program_t program({"--input", "/dev/input/event0"});
  ASSERT_TRUE(starts());
  EXPECT_EQ(program.end_by(SIGTERM), SIGTERM);
}

TEST_F(VgnControlMainRunning, LogsWarningsToSyslogAndStandardOutput) {
  program_t program({});
  ASSERT_TRUE(starts());
  EXPECT_THAT(logged(), AllOf(HasSubstr("<12>"), HasSubstr(blocked_line), Not(HasSubstr("Set propety"))));
  program.end_by(SIGTERM);
  EXPECT_THAT(program_t::output(), AllOf(HasSubstr(" : disable_vgn_ui_control"), Not(HasSubstr("Set propety"))));
}

TEST_F(VgnControlMainRunning, LogsEverythingWhenVerbose) {
  program_t program({"-v"});
  ASSERT_TRUE(starts());
  EXPECT_THAT(logged(), AllOf(HasSubstr(blocked_line), HasSubstr("<13>"), HasSubstr("Set propety")));
}

}  // namespace
