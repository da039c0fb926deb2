#include "app/factory_reset_controller.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QAbstractEventDispatcher>
#include <QMetaMethod>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "test_support/journal.h"
#include "test_support/qt_log_capture.h"
#include "test_support/qt_loop_until.h"
#include "test_support/qt_timers.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;
using vgn_control::FactoryResetController;

const std::filesystem::path script_path = "/usr/zyl/www/cgi-bin/factory_reset_script";
constexpr const char* arguments_path = "/tmp/reset_arguments";
constexpr const char* end_path = "/tmp/reset_end";

std::string contentOf(const std::filesystem::path& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

class FactoryResetControllerTest : public testing::Test {
 protected:
  FactoryResetControllerTest() {
    std::filesystem::create_directories(script_path.parent_path());
    hear(controller);
  }

  /// Notes what a controller tells, until the end of the test.
  void hear(FactoryResetController& told_by) {
    using controller_t = FactoryResetController;
    auto* const from = &told_by;
    QObject::connect(from, &controller_t::resetInitiated, &listener, [this] { note("initiated"); });
    QObject::connect(from, &controller_t::resetStarted, &listener, [this] { note("started"); });
    QObject::connect(from, &controller_t::resetCompleted, &listener, [this](int code) { note("completed", code); });
    QObject::connect(from, &controller_t::resetFailed, &listener,
                     [this](QProcess::ProcessError error) { note("failed", static_cast<int>(error)); });
    QObject::connect(from, &controller_t::resetCancelled, &listener, [this] { note("cancelled"); });
  }

  /// Every run leaves a line of its arguments, then does what `commands` say.
  static void installScript(const std::string& commands) {
    std::ofstream(script_path) << "#!/bin/sh\necho \"$#:$*\" >>" << arguments_path << "\n" << commands << "\n";
    std::filesystem::permissions(script_path, std::filesystem::perms::owner_all);
  }

  /// The script runs until `endScript`, whose number is its exit status.
  static void installLongScript() {
    ASSERT_EQ(::mkfifo(end_path, 0600), 0);
    installScript(std::string("read status <") + end_path + "\nexit $status");
  }
  static void endScript(int status) { std::ofstream(end_path) << status << "\n"; }

  QList<QAbstractEventDispatcher::TimerInfo> timers() {
    return QAbstractEventDispatcher::instance()->registeredTimers(&controller);
  }

  /// Lets the five seconds of the present hold be over.
  void holdElapses() {
    ASSERT_THAT(test_support::timer_intervals_of(controller), ElementsAre(5000));
    test_support::expire_timers_of(controller);
  }

  template <typename... Pieces>
  void note(const Pieces&... pieces) {
    journal.note(pieces...);
    ++noted;
  }

  /// What happened, when so much has since the start of the test.
  std::vector<std::string> happened(int count) {
    EXPECT_TRUE(test_support::qt_loop_until([&] { return noted >= count; }));
    return journal.take();
  }

  test_support::journal_t journal;
  int noted = 0;
  test_support::qt_log_capture_t log;
  QObject listener;
  FactoryResetController controller;
};

TEST_F(FactoryResetControllerTest, APressBeginsAHoldOfFiveSecondsByACoarseTimer) {
  controller.start();
  EXPECT_THAT(journal.take(), ElementsAre("initiated"));
  EXPECT_THAT(log.lines(QtDebugMsg), ElementsAre("Factory reset process was initiated"));
  ASSERT_THAT(timers(), SizeIs(1));
  EXPECT_EQ(timers().front().interval, 5000);
  EXPECT_EQ(timers().front().timerType, Qt::CoarseTimer);
}

TEST_F(FactoryResetControllerTest, AReleaseBeforeTheEndOfTheHoldStartsNoScript) {
  installScript("exit 0");
  controller.start();
  controller.cancel();
  EXPECT_THAT(timers(), IsEmpty());
  EXPECT_THAT(journal.take(), ElementsAre("initiated", "cancelled"));
  EXPECT_THAT(log.lines(QtDebugMsg),
              ElementsAre("Factory reset process was initiated", "Factory reset process was cancelled"));
  EXPECT_FALSE(std::filesystem::exists(arguments_path));
}

TEST_F(FactoryResetControllerTest, AReleaseWithoutAHoldIsToldAllTheSame) {
  controller.cancel();
  EXPECT_THAT(journal.take(), ElementsAre("cancelled"));
}

// Timers are listed in the order of their ends, and those that end together in the order of their starts.
TEST_F(FactoryResetControllerTest, ARepeatBeginsTheHoldAnew) {
  controller.start();
  const int begun_meanwhile = controller.startTimer(5000, Qt::CoarseTimer);
  EXPECT_NE(timers().front().timerId, begun_meanwhile);
  controller.start();
  ASSERT_THAT(timers(), SizeIs(2));
  EXPECT_EQ(timers().front().timerId, begun_meanwhile);
  EXPECT_EQ(timers().back().interval, 5000);
  EXPECT_THAT(journal.take(), ElementsAre("initiated", "initiated"));
}

TEST_F(FactoryResetControllerTest, TheEndOfTheHoldRunsTheScriptWithItsLevel) {
  installScript("exit 0");
  controller.start();
  holdElapses();
  EXPECT_THAT(timers(), IsEmpty());
  EXPECT_THAT(happened(3), ElementsAre("initiated", "started", "completed 0"));
  EXPECT_EQ(contentOf(arguments_path), "1:--level=1\n");
  EXPECT_THAT(log.lines(QtDebugMsg),
              ElementsAre("Factory reset process was initiated",
                          "Starting script:  \"/usr/zyl/www/cgi-bin/factory_reset_script\"",
                          "Factory reset process started", "Factory reset process finished:  0"));
  EXPECT_THAT(log.lines(QtCriticalMsg), IsEmpty());
}

TEST_F(FactoryResetControllerTest, AScriptThatFailsIsCompletedWithItsStatus) {
  installScript("exit 3");
  controller.start();
  holdElapses();
  EXPECT_THAT(happened(3), ElementsAre("initiated", "started", "completed 3"));
  EXPECT_THAT(log.lines(QtCriticalMsg), IsEmpty());
}

TEST_F(FactoryResetControllerTest, AScriptThatIsNotThereFailsToStart) {
  controller.start();
  holdElapses();
  EXPECT_THAT(happened(2), ElementsAre("initiated", "failed 0"));
  EXPECT_THAT(log.lines(QtCriticalMsg), ElementsAre("Factory reset failed 0"));
  EXPECT_THAT(timers(), IsEmpty());
}

TEST_F(FactoryResetControllerTest, AScriptThatCannotBeExecutedFailsToStart) {
  installScript("exit 0");
  std::filesystem::permissions(script_path, std::filesystem::perms::owner_read);
  controller.start();
  holdElapses();
  EXPECT_THAT(happened(2), ElementsAre("initiated", "failed 0"));
  EXPECT_FALSE(std::filesystem::exists(arguments_path));
}

TEST_F(FactoryResetControllerTest, AScriptThatIsKilledFailsAndIsCompletedWithTheSignal) {
  installScript("kill -9 $$");
  controller.start();
  holdElapses();
  EXPECT_THAT(happened(4), ElementsAre("initiated", "started", "failed 1", "completed 9"));
  EXPECT_THAT(log.lines(QtCriticalMsg), ElementsAre("Factory reset failed 1"));
}

TEST_F(FactoryResetControllerTest, SpeaksInTheCategoryOfTheApplication) {
  controller.start();
  holdElapses();
  EXPECT_THAT(happened(2), ElementsAre("initiated", "failed 0"));
  controller.cancel();
  EXPECT_THAT(log.categories(), ElementsAre("zyl.vgn.control"));
}

TEST_F(FactoryResetControllerTest, AReleaseWhileTheScriptRunsIsToldAndDoesNotStopIt) {
  installLongScript();
  controller.start();
  holdElapses();
  EXPECT_THAT(happened(2), ElementsAre("initiated", "started"));
  controller.cancel();
  EXPECT_THAT(journal.take(), ElementsAre("cancelled"));
  endScript(7);
  EXPECT_THAT(happened(4), ElementsAre("completed 7"));
}

TEST_F(FactoryResetControllerTest, AHoldAfterTheScriptHasEndedRunsItAgain) {
  installScript("exit 0");
  controller.start();
  holdElapses();
  EXPECT_THAT(happened(3), ElementsAre("initiated", "started", "completed 0"));
  controller.start();
  holdElapses();
  EXPECT_THAT(happened(6), ElementsAre("initiated", "started", "completed 0"));
  EXPECT_EQ(contentOf(arguments_path), "1:--level=1\n1:--level=1\n");
}

TEST_F(FactoryResetControllerTest, AHoldAfterAFailedStartTriesAgain) {
  controller.start();
  holdElapses();
  EXPECT_THAT(happened(2), ElementsAre("initiated", "failed 0"));
  installScript("exit 0");
  controller.start();
  holdElapses();
  EXPECT_THAT(happened(5), ElementsAre("initiated", "started", "completed 0"));
}

TEST_F(FactoryResetControllerTest, AHoldWhileTheScriptRunsEndsWithoutASecondOne) {
  installLongScript();
  controller.start();
  holdElapses();
  EXPECT_THAT(happened(2), ElementsAre("initiated", "started"));
  controller.start();
  holdElapses();
  EXPECT_THAT(timers(), IsEmpty());
  endScript(0);
  EXPECT_THAT(happened(4), ElementsAre("initiated", "completed 0"));
  EXPECT_EQ(contentOf(arguments_path), "1:--level=1\n");
}

/// What this process has open, as the kernel names it.
std::vector<std::string> openedByTheTest() {
  std::vector<std::string> opened;
  for (const auto& descriptor : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code gone;
    opened.push_back(std::filesystem::read_symlink(descriptor, gone));
  }
  return opened;
}

TEST_F(FactoryResetControllerTest, TheScriptReadsAndWritesThroughPipesThatStayOpen) {
  ASSERT_EQ(::mkfifo(end_path, 0600), 0);
  installScript(std::string("pipes=$(readlink /proc/$$/fd/0 /proc/$$/fd/1 /proc/$$/fd/2)\n"
                            "echo \"$pipes\" >/tmp/reset_pipes\nread status <") +
                end_path);
  controller.start();
  holdElapses();
  EXPECT_THAT(happened(2), ElementsAre("initiated", "started"));
  std::ofstream end(end_path);
  std::istringstream pipes(contentOf("/tmp/reset_pipes"));
  for (const char* what : {"input", "output", "error output"}) {
    std::string pipe;
    ASSERT_TRUE(std::getline(pipes, pipe)) << what;
    EXPECT_THAT(pipe, StartsWith("pipe:")) << what;
    EXPECT_THAT(openedByTheTest(), Contains(pipe)) << what;
  }
  end << "0\n" << std::flush;
  EXPECT_THAT(happened(3), ElementsAre("completed 0"));
}

TEST_F(FactoryResetControllerTest, AControllerThatIsDestroyedEndsTheScriptAndTellsNothing) {
  installLongScript();
  auto other = std::make_unique<FactoryResetController>();
  hear(*other);
  other->start();
  test_support::expire_timers_of(*other);
  EXPECT_THAT(happened(2), ElementsAre("initiated", "started"));
  const int end = ::open(end_path, O_WRONLY | O_CLOEXEC);  // once the script reads from there
  other.reset();
  EXPECT_THAT(journal.take(), IsEmpty());
  EXPECT_THAT(log.lines(QtCriticalMsg), IsEmpty());
  EXPECT_EQ(::open(end_path, O_WRONLY | O_NONBLOCK | O_CLOEXEC), -1);
  EXPECT_EQ(errno, ENXIO);  // nobody reads any more
  ::close(end);
}

TEST_F(FactoryResetControllerTest, ItsSignalsComeBeforeItsSlotsInTheirOrder) {
  const QMetaObject& meta = FactoryResetController::staticMetaObject;
  std::vector<std::string> methods;
  for (int index = meta.methodOffset(); index < meta.methodCount(); ++index) {
    methods.push_back(meta.method(index).methodSignature().toStdString());
  }
  EXPECT_THAT(methods, ElementsAre("resetInitiated()", "resetStarted()", "resetCompleted(int)",
                                   "resetFailed(QProcess::ProcessError)", "resetCancelled()", "start()", "cancel()"));
}

}  // namespace
