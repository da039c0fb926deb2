#include "control_lib/src/worker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <iterator>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include "control_lib/src/worker_manager_imp.h"
#include "control_lib/test/stub_worker.h"
#include "test_support/log_capture.h"

using control_lib::stub_worker_t;
using control_lib::worker_manager_imp_t;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::MatchesRegex;

namespace {

thread_local bool no_memory = false;

}  // namespace

// NOLINTBEGIN(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory): the allocator itself

/// The allocator of this program, which once has no memory when a test says so.
void* operator new(std::size_t size) {
  void* const got = std::exchange(no_memory, false) ? nullptr : std::malloc(size);
  if (got == nullptr) {
    throw std::bad_alloc();
  }
  return got;
}

void operator delete(void* freed) noexcept { std::free(freed); }

void operator delete(void* freed, std::size_t /*size*/) noexcept { std::free(freed); }

// NOLINTEND(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)

namespace {

const std::filesystem::path folder = "/var/run/workers";

std::filesystem::path pid_file_of(int thread) { return folder / ("worker_" + std::to_string(thread) + ".pid"); }

std::string content(const std::filesystem::path& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

class Worker : public testing::Test {
 protected:
  Worker() { std::filesystem::create_directories(folder); }

  /// Runs the worker to its end with `body` as its work; the kernel's id of its thread.
  static int run(stub_worker_t& worker, const std::function<void()>& body) {
    int thread = 0;
    worker.on_run = [&thread, &body] {
      thread = gettid();
      body();
    };
    worker.spawn();
    worker.join();
    return thread;
  }

  test_support::log_capture_t log{"ctl_worker"};
  worker_manager_imp_t manager;
};

}  // namespace

TEST_F(Worker, HasAFileWithItsDescriptionWhileItRuns) {
  stub_worker_t worker(manager, "video loop");
  std::string seen;
  const int thread = run(worker, [&seen] { seen = content(pid_file_of(gettid())); });
  EXPECT_NE(thread, getpid());
  EXPECT_EQ(seen, "video loop\n");
  EXPECT_TRUE(std::filesystem::is_empty(folder));
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Worker, WithoutADescriptionSaysSo) {
  stub_worker_t worker(manager, nullptr);
  std::string seen;
  run(worker, [&seen] { seen = content(pid_file_of(gettid())); });
  EXPECT_EQ(seen, "(no description)\n");
}

TEST_F(Worker, RunsWithoutAFileWhereThereIsNoFolder) {
  std::filesystem::remove(folder);
  stub_worker_t worker(manager);
  bool ran = false;
  run(worker, [&ran] { ran = true; });
  EXPECT_TRUE(ran);
  EXPECT_FALSE(std::filesystem::exists(folder));
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Worker, ThatThrowsAnExceptionLogsItsTextAndRemovesItsFile) {
  stub_worker_t worker(manager, "video loop");
  const int thread = run(worker, [] { throw std::runtime_error("no picture"); });
  EXPECT_THAT(log.lines(),
              ElementsAre("Worker [video loop(" + std::to_string(thread) + ") died from an exception: no picture"));
  EXPECT_EQ(log.entries()[0].level, spdlog::level::err);
  EXPECT_TRUE(std::filesystem::is_empty(folder));
}

TEST_F(Worker, ThatThrowsSomethingElseLogsThatAndRemovesItsFile) {
  stub_worker_t worker(manager, "video loop");
  const int thread = run(worker, [] { throw 7; });
  EXPECT_THAT(log.lines(),
              ElementsAre("Worker [video loop(" + std::to_string(thread) + ") died from an unknown exception"));
  EXPECT_EQ(log.entries()[0].level, spdlog::level::err);
  EXPECT_TRUE(std::filesystem::is_empty(folder));
}

TEST_F(Worker, ThatDiedLeavesTheOthersRunningAndIsNotRestarted) {
  stub_worker_t mortal(manager);
  stub_worker_t other(manager);
  int runs = 0;
  std::promise<void> begun;
  other.on_run = [&] {
    begun.set_value();
    other.wait_for_stop();
  };
  other.spawn();
  begun.get_future().wait();
  run(mortal, [&runs] {
    ++runs;
    throw std::runtime_error("no picture");
  });
  EXPECT_EQ(runs, 1);
  EXPECT_TRUE(other.joinable());
  EXPECT_FALSE(std::filesystem::is_empty(folder));
  manager.stop_all();
  EXPECT_TRUE(std::filesystem::is_empty(folder));
}

TEST_F(Worker, IsJoinableFromItsStartUntilItIsJoined) {
  stub_worker_t worker(manager);
  EXPECT_FALSE(worker.joinable());
  worker.spawn();
  EXPECT_TRUE(worker.joinable());
  worker.end_the_wait();
  worker.join();
  EXPECT_FALSE(worker.joinable());
  EXPECT_THROW(worker.join(), std::system_error);
}

TEST_F(Worker, KnowsItsOwnThread) {
  stub_worker_t worker(manager);
  stub_worker_t other(manager);
  EXPECT_FALSE(worker.is_current_thread());
  bool known = false;
  bool known_to_other = true;
  run(worker, [&] {
    known = worker.is_current_thread();
    known_to_other = other.is_current_thread();
  });
  EXPECT_TRUE(known);
  EXPECT_FALSE(known_to_other);
  EXPECT_FALSE(worker.is_current_thread());
}

TEST_F(Worker, CanBeStartedAgainAfterItsEnd) {
  stub_worker_t worker(manager);
  int runs = 0;
  run(worker, [&runs] { ++runs; });
  run(worker, [&runs] { ++runs; });
  EXPECT_EQ(runs, 2);
}

/// While it lives, no thread can be started: the stack that each would get does not fit into the address space.
class no_thread_t {
 public:
  no_thread_t() {
    pthread_getattr_default_np(&usual);
    pthread_attr_t huge;
    pthread_attr_init(&huge);
    pthread_attr_setstacksize(&huge, std::size_t{1} << 60);
    pthread_setattr_default_np(&huge);
    pthread_attr_destroy(&huge);
  }
  ~no_thread_t() {
    pthread_setattr_default_np(&usual);
    pthread_attr_destroy(&usual);
  }

  no_thread_t(const no_thread_t&) = delete;
  no_thread_t& operator=(const no_thread_t&) = delete;

 private:
  pthread_attr_t usual;
};

TEST_F(Worker, WhoseThreadCannotBeStartedSaysSoAndCanBeStartedLater) {
  stub_worker_t worker(manager);
  {
    const no_thread_t none;
    worker.spawn();
  }
  EXPECT_FALSE(worker.joinable());
  ASSERT_EQ(log.lines().size(), 1U);
  EXPECT_THAT(log.lines()[0], MatchesRegex("  \\[" + std::to_string(gettid()) +
                                           "\\]: \\[src/worker:[0-9]+\\] Failed to start worker thread: "
                                           "Resource temporarily unavailable"));
  EXPECT_EQ(log.entries()[0].level, spdlog::level::err);
  bool ran = false;
  run(worker, [&ran] { ran = true; });
  EXPECT_TRUE(ran);
}

TEST_F(Worker, ForWhoseThreadThereIsNoMemorySaysSoAndCanBeStartedLater) {
  stub_worker_t worker(manager);
  no_memory = true;
  worker.spawn();
  EXPECT_FALSE(std::exchange(no_memory, false));
  EXPECT_FALSE(worker.joinable());
  ASSERT_EQ(log.lines().size(), 1U);
  EXPECT_THAT(log.lines()[0], EndsWith("] Failed to start worker thread: std::bad_alloc"));
  bool ran = false;
  run(worker, [&ran] { ran = true; });
  EXPECT_TRUE(ran);
}

using WorkerDeathTest = Worker;

TEST_F(WorkerDeathTest, ThatWasNotJoinedEndsTheProcessWhenItIsDestroyed) {
  EXPECT_EXIT(
      {
        stub_worker_t worker(manager);
        std::promise<void> begun;
        worker.on_run = [&] {
          begun.set_value();
          worker.wait_for_stop();
        };
        worker.spawn();
        begun.get_future().wait();
      },
      testing::KilledBySignal(SIGABRT), "terminate");
}

TEST_F(WorkerDeathTest, ThatIsStartedTwiceEndsTheProcess) {
  EXPECT_EXIT(
      {
        stub_worker_t worker(manager);
        worker.spawn();
        worker.spawn();
      },
      testing::KilledBySignal(SIGABRT), "terminate");
}
