#include "app/vgn_control_main.h"

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <syslog.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QEvent>
#include <QLoggingCategory>
#include <QTimer>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "app/test/program.h"
#include "test_support/crash_report.h"
#include "test_support/fake_property_service.h"
#include "test_support/fake_syslog.h"

namespace {

void tell(std::string_view line) {
  [[maybe_unused]] const ssize_t ignored = write(STDOUT_FILENO, line.data(), line.size());
}

}  // namespace

// These take the place of the C library's, which leave nothing to see.

void closelog() { tell("closelog\n"); }

/// Called by the set-up of the logs, the first thing behind the fatal-signal reporter, and for the message handler.
void openlog(const char* ident, int option, int facility) {
  struct sigaction action {};
  sigaction(SIGSEGV, nullptr, &action);
  std::ostringstream line;
  line << "openlog " << ident << ", " << option << ", " << facility
       << (action.sa_handler != SIG_DFL ? ", reporter installed\n" : ", no reporter\n");
  tell(line.str());
  reinterpret_cast<decltype(&openlog)>(dlsym(RTLD_NEXT, "openlog"))(ident, option, facility);
}

namespace {

using test_support::only_report_in;
using test_support::second_crash_log;
using testing::AllOf;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string aborted = "SIGABRT (abnormal termination)";

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

  ~VgnControlMainRunning() override {
    for (const int end : gate) {
      close(end);
    }
  }

  // Starts the program on the bus. It is forked before the bus has its thread, whose locks it would inherit.
  program_t& launch(std::vector<std::string> arguments, const std::function<void()>& before = program_t::nothing) {
    [[maybe_unused]] const int made = pipe(gate);
    launched.emplace(std::move(arguments), [this, &before] {
      char byte = 0;
      [[maybe_unused]] const ssize_t got = read(gate[0], &byte, 1);
      before();
    });
    service.emplace();
    [[maybe_unused]] const ssize_t told = write(gate[1], "1", 1);
    return *launched;
  }

  bool starts() { return writesUiControl("0"); }

  // Takes what is logged meanwhile: the log holds a few lines only, and who finds it full waits.
  bool writesUiControl(const char* value) {
    auto heard = std::async(std::launch::async, [&] {
      return service->hears({"set", "/vgn_ui/vgn_ui_control", value});
    });
    while (heard.wait_for(std::chrono::milliseconds(10)) != std::future_status::ready) {
      takeLog();
    }
    return heard.get();
  }

  std::string logged() {
    takeLog();
    return std::exchange(log, {});
  }

  test_support::fake_syslog_t syslog;
  std::optional<test_support::fake_property_service_t> service;

 private:
  void takeLog() {
    for (const auto& line : syslog.take()) {
      log += line + "\n";
    }
  }

  std::string log;
  int gate[2] = {-1, -1};
  std::optional<program_t> launched;
};

constexpr const char* blocked_line =
    "vgn_control: disable_vgn_ui_control detected. vgn_control video functions was disabled permanently.";

class VgnControlMainInput : public VgnControlMainRunning, public testing::WithParamInterface<const char*> {};

TEST_P(VgnControlMainInput, RunsUntilASignalEndsIt) {
  program_t& program = launch({GetParam(), "/dev/input/event0"});
  ASSERT_TRUE(starts());
  EXPECT_EQ(program.end_by(SIGTERM), SIGTERM);
}

INSTANTIATE_TEST_SUITE_P(Names, VgnControlMainInput, testing::Values("-i", "--input"));

TEST_F(VgnControlMainRunning, LogsWarningsToSyslogAndStandardOutput) {
  program_t& program = launch({});
  ASSERT_TRUE(starts());
  EXPECT_THAT(logged(),
              AllOf(ContainsRegex("<12>[^\n]*disable_vgn_ui_control detected"), Not(HasSubstr("Set propety"))));
  program.end_by(SIGTERM);
  EXPECT_THAT(program_t::output(), AllOf(HasSubstr(" : disable_vgn_ui_control"), Not(HasSubstr("Set propety"))));
}

class VgnControlMainVerbose : public VgnControlMainRunning, public testing::WithParamInterface<const char*> {};

TEST_P(VgnControlMainVerbose, LogsEverything) {
  launch({GetParam()});
  ASSERT_TRUE(starts());
  EXPECT_THAT(logged(), AllOf(HasSubstr(blocked_line), HasSubstr("<13>"), HasSubstr("Set propety")));
}

INSTANTIATE_TEST_SUITE_P(Names, VgnControlMainVerbose, testing::Values("-v", "--verbose"));

void leaveTheLoopWithSeven() {
  qAddPreRoutine([] { QTimer::singleShot(0, [] { QCoreApplication::exit(7); }); });
}

TEST_F(VgnControlMainRunning, ReturnsTheCodeThatQtsLoopIsLeftWith) {
  program_t& program = launch({}, leaveTheLoopWithSeven);
  EXPECT_EQ(program.exit_code(), 7);
}

/// Tells when the coordinator is destroyed, which it finds by the objects that join it.
class CoordinatorWatch : public QObject {
 public:
  bool eventFilter(QObject* receiver, QEvent* event) override {
    if (event->type() == QEvent::ChildAdded && !found && receiver->inherits("vgn_control::VgnControl")) {
      found = true;
      connect(receiver, &QObject::destroyed, [] { tell("coordinator destroyed\n"); });
    }
    return false;
  }

 private:
  bool found = false;
};

void leaveTheLoopUnderWatch() {
  static CoordinatorWatch watch;
  qAddPreRoutine([] { QCoreApplication::instance()->installEventFilter(&watch); });
  leaveTheLoopWithSeven();
}

TEST_F(VgnControlMainRunning, ClosesTheLogOnceWhenTheCoordinatorIsGone) {
  program_t& program = launch({}, leaveTheLoopUnderWatch);
  EXPECT_EQ(program.exit_code(), 7);
  const std::string output = program_t::output();
  EXPECT_THAT(output, EndsWith("coordinator destroyed\ncloselog\n"));
  EXPECT_EQ(output.find("closelog"), output.rfind("closelog"));
}

// The first to ask for the coordinator's log category are its keys, which find no device here. On a stack of its own,
// because the test framework waits on this one for what its tests throw.
void failToMakeTheCoordinator() {
  QLoggingCategory::installFilter([](QLoggingCategory* category) {
    if (std::string_view(category->categoryName()) == "zyl.vgn.control") {
      throw std::runtime_error("no category");
    }
  });
  std::thread([] {
    char name[] = "vgn_control";
    char* argv[] = {name, nullptr};
    vgn_control::vgn_control_main(1, argv);
  }).join();
}

TEST_F(VgnControlMainRunning, AnExceptionOfTheCoordinatorEndsItWithTheLogClosed) {
  program_t& program = launch({}, failToMakeTheCoordinator);
  EXPECT_EQ(program.exit_code(), 1);
  EXPECT_THAT(program_t::output(), AllOf(HasSubstr("closelog\n"), HasSubstr("no category")));
  EXPECT_EQ(only_report_in(second_crash_log).signal, aborted);
}

TEST(VgnControlMain, AFatalMessageIsLoggedAndReported) {
  test_support::fake_syslog_t syslog;
  program_t program({}, [] { qAddPreRoutine([] { qFatal("no picture"); }); });
  EXPECT_EQ(program.exit_code(), 1);
  const std::string output = program_t::output();
  EXPECT_THAT(output, AllOf(HasSubstr(" : no picture\n"), HasSubstr(test_support::crash_report_trailer)));
  EXPECT_THAT(syslog.take(), ElementsAre(AllOf(StartsWith("<9>"), EndsWith("vgn_control: no picture"))));
  const auto report = only_report_in(second_crash_log);
  EXPECT_EQ(report.program, "vgn_control");
  EXPECT_EQ(report.signal, aborted);
  EXPECT_EQ(report.code, "(unknown code)");
}

TEST(VgnControlMain, TakesTheFatalSignalsThenSetsTheLogsUpThenOpensTheMessageHandlersLog) {
  program_t program({"--help"});
  EXPECT_EQ(program.exit_code(), 0);
  const std::string logs = "openlog vgn_control, " + std::to_string(LOG_CONS | LOG_ODELAY) + ", " +
                           std::to_string(LOG_USER) + ", reporter installed\n";
  const std::string message_handler = "openlog vgn_control, 0, " + std::to_string(LOG_USER) + ", reporter installed\n";
  EXPECT_THAT(program_t::output(), StartsWith(logs + message_handler));
}

/// The program as it is in service: the bus tells that no engine runs, and there is neither streamer nor engine.
class VgnControlMainUnblocked : public VgnControlMainRunning {
 protected:
  VgnControlMainUnblocked() { unsetenv("VGN_CONTROL_BLOCK"); }

  // The coordinator has told the video side, and with that everything else, of the engine's state.
  bool knowsTheEngine() {
    service->send({"changed", "/sys/runtimeengine/state", "Stopped"});
    return writesUiControl("1");
  }
};

TEST_F(VgnControlMainUnblocked, LogsDebugLinesWhenVerbose) {
  launch({"-v"});
  ASSERT_TRUE(knowsTheEngine());
  EXPECT_THAT(logged(), AllOf(HasSubstr("<15>"), HasSubstr("Runtime engine status:")));
}

constexpr const char* level_file_effect = "vgn_streamer_proxy::set_design_stopped";

TEST_F(VgnControlMainUnblocked, LogsWhatTheVideoSideDoes) {
  launch({});
  ASSERT_TRUE(knowsTheEngine());
  EXPECT_THAT(logged(), HasSubstr(level_file_effect));
}

TEST_F(VgnControlMainUnblocked, TheLevelFileSaysWhatIsLogged) {
  std::filesystem::create_directories("/var/rwfs2");
  std::ofstream("/build_info.json") << R"({"git_revision": "abc"})";
  std::ofstream("/var/rwfs2/log_level.vgn_control.json")
      << R"({"git_revision": "abc", "vgn_control": {"streamerproxy": "Error"}})";
  launch({});
  ASSERT_TRUE(knowsTheEngine());
  EXPECT_THAT(logged(), Not(HasSubstr(level_file_effect)));
}

}  // namespace
