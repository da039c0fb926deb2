#include "control_lib/src/worker_manager_imp.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <future>
#include <mutex>
#include <string>
#include <vector>

#include "control_lib/test/stub_worker.h"

using control_lib::session_t;
using control_lib::stub_worker_t;
using control_lib::worker_manager_imp_t;
using control_lib::worker_manager_t;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

class WorkerManagerImp : public testing::Test {
 protected:
  void note(const std::string& line) {
    const std::lock_guard lock(mutex);
    lines.push_back(line);
  }

  /// The worker notes what it is asked to do, beside doing it.
  void watch(stub_worker_t& worker, const std::string& name) {
    worker.on_run = [this, &worker, name] {
      worker.wait_for_stop();
      note(name + " ends");
    };
    worker.on_stop = [this, &worker, name] {
      note("stop " + name);
      worker.end_the_wait();
    };
    worker.when_stopped = [this, name] { note(name + " has stopped"); };
  }

  worker_manager_imp_t manager;
  std::mutex mutex;
  std::vector<std::string> lines;
};

}  // namespace

TEST_F(WorkerManagerImp, IsASessionUnderTheNameOfItsInterface) {
  EXPECT_EQ(session_t::find("worker_manager_t"), &manager);
}

TEST_F(WorkerManagerImp, StartsAllItsWorkersAndStopsThem) {
  std::array<std::promise<void>, 3> begun;
  stub_worker_t first(manager);
  stub_worker_t second(manager);
  stub_worker_t third(manager);
  std::size_t number = 0;
  for (stub_worker_t* worker : {&first, &second, &third}) {
    worker->on_run = [worker, &mine = begun[number++]] {
      mine.set_value();
      worker->wait_for_stop();
    };
  }
  manager.start_all();
  for (auto& one : begun) {
    one.get_future().wait();
  }
  manager.stop_all();
  for (const stub_worker_t* worker : {&first, &second, &third}) {
    EXPECT_FALSE(worker->joinable());
  }
}

TEST_F(WorkerManagerImp, TellsAllToStopThenWaitsForAllThenTellsThemThatAllHaveStopped) {
  stub_worker_t first(manager);
  stub_worker_t second(manager);
  watch(first, "first");
  watch(second, "second");
  manager.start_all();
  manager.stop_all();
  ASSERT_EQ(lines.size(), 6U);
  const std::vector<std::string> others{lines[1], lines[2], lines[3]};
  EXPECT_EQ(lines[0], "stop first");
  EXPECT_THAT(others, UnorderedElementsAre("stop second", "first ends", "second ends"));
  EXPECT_EQ(lines[4], "first has stopped");
  EXPECT_EQ(lines[5], "second has stopped");
}

TEST_F(WorkerManagerImp, TellsTheOthersBeforeItWaitsForASlowOne) {
  stub_worker_t slow(manager);
  stub_worker_t other(manager);
  std::promise<void> other_told;
  slow.on_run = [&] { other_told.get_future().wait(); };
  slow.on_stop = [] {};
  other.on_stop = [&] {
    other_told.set_value();
    other.end_the_wait();
  };
  manager.start_all();
  manager.stop_all();
  EXPECT_FALSE(slow.joinable());
}

TEST_F(WorkerManagerImp, HasJoinedEverybodyBeforeItTellsAnybodyThatAllHaveStopped) {
  stub_worker_t first(manager);
  stub_worker_t second(manager);
  first.when_stopped = [&] { note(second.joinable() ? "second runs" : "second is joined"); };
  manager.start_all();
  manager.stop_all();
  EXPECT_THAT(lines, ElementsAre("second is joined"));
}

TEST_F(WorkerManagerImp, TellsAWorkerThatNeverRanOnlyThatAllHaveStopped) {
  stub_worker_t idle(manager);
  stub_worker_t busy(manager);
  watch(idle, "idle");
  watch(busy, "busy");
  busy.spawn();
  manager.stop_all();
  EXPECT_THAT(lines, ElementsAre("stop busy", "busy ends", "idle has stopped", "busy has stopped"));
}

TEST_F(WorkerManagerImp, TellsAWorkerThatEndedByItselfToStopAsLongAsNobodyJoinedIt) {
  stub_worker_t brief(manager);
  watch(brief, "brief");
  std::promise<void> ended;
  brief.on_run = [&ended] { ended.set_value(); };
  manager.start_all();
  ended.get_future().wait();
  manager.stop_all();
  EXPECT_THAT(lines, ElementsAre("stop brief", "brief has stopped"));
  manager.stop_all();
  EXPECT_THAT(lines, ElementsAre("stop brief", "brief has stopped", "brief has stopped"));
}

TEST_F(WorkerManagerImp, WithoutWorkersHasNothingToDo) {
  manager.start_all();
  manager.stop_all();
  EXPECT_THAT(lines, IsEmpty());
}
