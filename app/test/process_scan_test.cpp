#include "app/process_scan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "test_support/fake_process.h"

namespace {

using testing::IsEmpty;
using testing::UnorderedElementsAre;
using vgn_control::isProcessEntry;
using vgn_control::processesNamed;

const std::string engine_name = test_support::name_for_processes();

TEST(ProcessScan, OnlyDigitsNameAProcess) {
  EXPECT_TRUE(isProcessEntry("1"));
  EXPECT_TRUE(isProcessEntry("0123456789"));
  EXPECT_FALSE(isProcessEntry("self"));
  EXPECT_FALSE(isProcessEntry("1a"));
  EXPECT_FALSE(isProcessEntry("-1"));
}

TEST(ProcessScan, AnEmptyNamePasses) { EXPECT_TRUE(isProcessEntry("")); }

TEST(ProcessScan, FindsEveryProcessOfTheName) {
  const test_support::fake_process_t first(engine_name);
  const test_support::fake_process_t second(engine_name);
  EXPECT_THAT(processesNamed(engine_name.c_str()),
              UnorderedElementsAre(QString::fromStdString(first.id()), QString::fromStdString(second.id())));
}

TEST(ProcessScan, FindsNothingOfANameThatNoProcessHas) { EXPECT_THAT(processesNamed(engine_name.c_str()), IsEmpty()); }

TEST(ProcessScan, ALongerNameWithTheSameBeginningDoesNotMatch) {
  const test_support::fake_process_t other(engine_name + "2");
  EXPECT_THAT(processesNamed(engine_name.c_str()), IsEmpty());
}

TEST(ProcessScan, BlanksAndLineBreaksAroundTheNameDoNotCount) {
  const test_support::fake_process_t process(" engine\n ");
  EXPECT_THAT(processesNamed("engine"), UnorderedElementsAre(QString::fromStdString(process.id())));
}

TEST(ProcessScan, AWantedNameBeyondFifteenCharactersFindsNothing) {
  const test_support::fake_process_t process("a_process_of_sixteen");
  EXPECT_THAT(processesNamed("a_process_of_sixteen"), IsEmpty());
  EXPECT_THAT(processesNamed("a_process_of_si"), UnorderedElementsAre(QString::fromStdString(process.id())));
}

/// A shell that runs until `end`, by a link of this name.
class linked_program_t {
 public:
  explicit linked_program_t(const std::string& name) {
    std::filesystem::create_symlink("/bin/sh", "/tmp/" + name);
    EXPECT_EQ(::mkfifo("/tmp/end", 0600), 0);
    program = ::popen(("exec /tmp/" + name + " -c 'echo $$; read line </tmp/end'").c_str(), "r");
    char line[16] = {};
    EXPECT_NE(std::fgets(line, sizeof line, program), nullptr);
    process_id = QString(line).trimmed();
  }
  ~linked_program_t() { end(); }

  linked_program_t(const linked_program_t&) = delete;
  linked_program_t& operator=(const linked_program_t&) = delete;

  QString id() const { return process_id; }

  /// The program is gone when this returns.
  void end() {
    if (program != nullptr) {
      std::ofstream("/tmp/end") << "\n";
      ::pclose(std::exchange(program, nullptr));
    }
  }

 private:
  FILE* program = nullptr;
  QString process_id;
};

TEST(ProcessScan, FindsAProgramByTheNameOfItsFileForAsLongAsItRuns) {
  linked_program_t engine(engine_name);
  EXPECT_THAT(processesNamed(engine_name.c_str()), UnorderedElementsAre(engine.id()));
  engine.end();
  EXPECT_THAT(processesNamed(engine_name.c_str()), IsEmpty());
}

TEST(ProcessScan, AProcessThatHasEndedIsFoundUntilItsParentHasSeenIt) {
  const pid_t child = ::fork();
  if (child == 0) {
    prctl(PR_SET_NAME, engine_name.c_str());
    ::_exit(0);
  }
  siginfo_t ended{};
  ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOWAIT), 0);
  EXPECT_THAT(processesNamed(engine_name.c_str()), UnorderedElementsAre(QString::number(child)));
  ::waitpid(child, nullptr, 0);
  EXPECT_THAT(processesNamed(engine_name.c_str()), IsEmpty());
}

TEST(ProcessScan, AProcessIsFoundUnderItsIdAloneThoughSelfShowsItToo) {
  prctl(PR_SET_NAME, "scanning_test");
  EXPECT_THAT(processesNamed("scanning_test"), UnorderedElementsAre(QString::number(getpid())));
}

/// While it lives, the process can open so many descriptors and no more.
class descriptor_limit_t {
 public:
  explicit descriptor_limit_t(int more) {
    getrlimit(RLIMIT_NOFILE, &before);
    // The kernel gives the lowest free number, so all below it are in use.
    const int lowest_free = dup(STDOUT_FILENO);
    close(lowest_free);
    const rlimit limit{static_cast<rlim_t>(lowest_free + more), before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &limit);
  }
  ~descriptor_limit_t() { setrlimit(RLIMIT_NOFILE, &before); }

  descriptor_limit_t(const descriptor_limit_t&) = delete;
  descriptor_limit_t& operator=(const descriptor_limit_t&) = delete;

 private:
  rlimit before{};
};

TEST(ProcessScan, AProcessWhoseNameCannotBeReadIsPassedOver) {
  const test_support::fake_process_t nameless("");
  ASSERT_THAT(processesNamed(""), UnorderedElementsAre(QString::fromStdString(nameless.id())));
  QStringList found;
  {
    const descriptor_limit_t directory_alone(1);
    found = processesNamed("");
  }
  EXPECT_THAT(found, IsEmpty());
}

void scanWithoutDescriptors() {
  qInstallMessageHandler([](QtMsgType /*type*/, const QMessageLogContext& context, const QString& text) {
    std::fprintf(stderr, "[%s] %s\n", context.category, qPrintable(text));
  });
  const descriptor_limit_t none(0);
  processesNamed(engine_name.c_str());
}

TEST(ProcessScanDeathTest, WithoutProcTheProgramEnds) {
  EXPECT_DEATH(scanWithoutDescriptors(), "\\[default\\] Failed to open /proc\n");
}

}  // namespace
