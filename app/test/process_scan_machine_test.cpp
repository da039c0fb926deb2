// The scan on a machine whose processes are made by the test.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <string>
#include <string_view>

#include "app/process_scan.h"
#include "test_support/fake_udev.h"

namespace {

using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;
using vgn_control::processesNamed;

/// Ids that no real process has.
constexpr const char* first_id = "99999998";
constexpr const char* second_id = "99999999";

class ProcessScanMachine : public testing::Test {
 protected:
  void addProcess(const std::string& id, const std::string& comm) { machine.write("/proc/" + id + "/comm", comm); }

  std::filesystem::path folderOf(const std::string& id) const { return machine.place("/proc/" + id); }

  test_support::fake_udev_t machine;
};

TEST_F(ProcessScanMachine, FindsTheProcessesOfTheName) {
  addProcess(first_id, "runtime_engine\n");
  addProcess(second_id, "runtime_engine\n");
  EXPECT_THAT(processesNamed("runtime_engine"), UnorderedElementsAre(first_id, second_id));
}

TEST_F(ProcessScanMachine, PassesOverEntriesThatAreNoNumbers) {
  for (const char* entry : {"self", "thread-self", "1a", "a1", "-1", "1.0", "+1"}) {
    addProcess(entry, "runtime_engine\n");
  }
  addProcess(first_id, "runtime_engine\n");
  EXPECT_THAT(processesNamed("runtime_engine"), UnorderedElementsAre(first_id));
}

TEST_F(ProcessScanMachine, PassesOverProcessesWithoutANameToRead) {
  std::filesystem::create_directories(folderOf(first_id));
  std::filesystem::create_directories(folderOf(second_id) / "comm");
  EXPECT_THAT(processesNamed(""), IsEmpty());
}

TEST_F(ProcessScanMachine, AnEmptyNameIsFoundByAnEmptyNameAlone) {
  addProcess(first_id, "");
  addProcess(second_id, "\n");
  EXPECT_THAT(processesNamed("runtime_engine"), IsEmpty());
  EXPECT_THAT(processesNamed(""), UnorderedElementsAre(first_id, second_id));
}

TEST_F(ProcessScanMachine, LineBreaksInsideTheNameDoNotCount) {
  addProcess(first_id, "runtime\n_engine\n\n");
  EXPECT_THAT(processesNamed("runtime_engine"), UnorderedElementsAre(first_id));
}

TEST_F(ProcessScanMachine, BlanksInsideTheNameCount) {
  addProcess(first_id, "runtime engine\n");
  addProcess(second_id, " \truntime engine \n");
  EXPECT_THAT(processesNamed("runtime_engine"), IsEmpty());
  EXPECT_THAT(processesNamed("runtime engine"), UnorderedElementsAre(first_id, second_id));
}

TEST_F(ProcessScanMachine, TheNameMustBeExact) {
  addProcess(first_id, "Runtime_engine\n");
  addProcess(second_id, "runtime_engin\n");
  EXPECT_THAT(processesNamed("runtime_engine"), IsEmpty());
}

TEST_F(ProcessScanMachine, FindsMoreProcessesThanItReservesRoomFor) {
  for (int process = 0; process < 100; ++process) {
    addProcess(std::to_string(99'999'000 + process), "runtime_engine\n");
  }
  EXPECT_THAT(processesNamed("runtime_engine"), SizeIs(100));
}

/// Waits until one of the two pipes is being opened, takes the other one away, and lets the open one tell its text.
[[noreturn]] void endTheOther(const std::array<std::string, 2>& pipes, std::string_view text) {
  std::size_t opened = 0;
  int pipe = -1;
  while ((pipe = ::open(pipes[opened].c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC)) < 0) {
    opened = 1 - opened;
    ::sched_yield();
  }
  ::unlink(pipes[1 - opened].c_str());
  ::_exit(::write(pipe, text.data(), text.size()) == static_cast<ssize_t>(text.size()) ? 0 : 1);
}

// The names are pipes, so that the scan waits at the process that it looks at first until the other one has ended. A
// process ends it, because the preload library lets no other thread open a file meanwhile.
TEST_F(ProcessScanMachine, AProcessThatEndsBeforeItIsLookedAtIsPassedOver) {
  const std::array pipes{(folderOf(first_id) / "comm").string(), (folderOf(second_id) / "comm").string()};
  for (const auto& pipe : pipes) {
    std::filesystem::create_directories(std::filesystem::path(pipe).parent_path());
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  }
  const pid_t child = ::fork();
  if (child == 0) {
    endTheOther(pipes, "runtime_engine\n");
  }
  EXPECT_THAT(processesNamed("runtime_engine"), SizeIs(1));
  int status = -1;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
}

}  // namespace
