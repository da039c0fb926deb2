// libevent's `event_base_loop` is defined here anew, in front of the library's: it does what that does, unless a test
// wants to be there when the loop is entered, or to give a result that the library gives only in trouble.

#include "control_lib/src/event_base_manager.h"

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "control_lib/src/worker_manager_imp.h"
#include "test_support/log_capture.h"
#include "zyl/post.h"

namespace {

/// What is seen of the loop function, and what is made of it. Only the thread that runs a loop touches it.
struct loop_script_t {
  std::function<void()> on_entry = [] {};
  std::deque<int> results;  // in place of running the loop
  std::vector<int> flags;   // of each call
};

loop_script_t script;

}  // namespace

extern "C" int event_base_loop(event_base* base, int flags) {
  static const auto library = reinterpret_cast<int (*)(event_base*, int)>(dlsym(RTLD_NEXT, "event_base_loop"));
  script.flags.push_back(flags);
  script.on_entry();
  if (!script.results.empty()) {
    const int result = script.results.front();
    script.results.pop_front();
    return result;
  }
  return library(base, flags);
}

namespace {

using control_lib::event_base_manager_t;
using control_lib::status_entry_t;
using control_lib::worker_manager_imp_t;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;

class EventBaseManager : public testing::Test {
 protected:
  EventBaseManager() { script = {}; }
  ~EventBaseManager() override { manager.stop_all(); }

  void post(std::function<void()> call) { zyl::post(worker.event_base(), std::move(call)); }

  /// Returns when the loop has run what was posted so far.
  void wait_for_posts() {
    std::promise<void> ran;
    post([&ran] { ran.set_value(); });
    ran.get_future().wait();
  }

  /// From another thread than the caller's.
  void stop_from_elsewhere() {
    std::thread([this] { worker.stop(); }).join();
  }

  /// The loop was left, and can be run and left once more.
  void expect_runs_again() {
    worker.start();
    worker.spawn();
    wait_for_posts();
    worker.stop();
    worker.join();
  }

  std::string tagged(const std::string& text) const {
    return "  \\[" + std::to_string(gettid()) + "\\]: \\[src/event_base_manager:[0-9]+\\] " + text;
  }

  test_support::log_capture_t log{"ctl_event_base"};
  worker_manager_imp_t manager;
  event_base_manager_t worker{manager};
};

TEST_F(EventBaseManager, RunsWhatIsPostedOnItsThread) {
  manager.start_all();
  bool on_its_thread = false;
  post([&] { on_its_thread = worker.is_current_thread(); });
  wait_for_posts();
  EXPECT_TRUE(on_its_thread);
}

TEST_F(EventBaseManager, WaitsInOneCallOfTheLoopWhileThereIsNoEvent) {
  manager.start_all();
  wait_for_posts();
  wait_for_posts();
  manager.stop_all();
  EXPECT_THAT(script.flags, ElementsAre(EVLOOP_NO_EXIT_ON_EMPTY));
  EXPECT_EQ(EVLOOP_NO_EXIT_ON_EMPTY, 4);
}

TEST_F(EventBaseManager, GoesRoundWhenTheLoopHadNoEvents) {
  script.results = {1, 1, 0};
  worker.run();
  EXPECT_THAT(script.flags, SizeIs(3));
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(EventBaseManager, EndsWhenSomebodyBreaksTheLoop) {
  manager.start_all();
  post([this] { event_base_loopbreak(worker.event_base()); });
  worker.join();
  EXPECT_THAT(script.flags, SizeIs(1));
  worker.run();
  EXPECT_THAT(script.flags, SizeIs(1)) << "it ran again without being told so";
  expect_runs_again();
}

TEST_F(EventBaseManager, TellsOfATroubledLoopAndGoesRound) {
  script.results = {-1, -1, 0};
  worker.run();
  EXPECT_THAT(log.lines(), ElementsAre(MatchesRegex(tagged("Event base had some kind of issue")),
                                       MatchesRegex(tagged("Event base had some kind of issue"))));
  EXPECT_EQ(log.entries()[0].level, spdlog::level::err);
}

TEST_F(EventBaseManager, TellsOfAnUnknownResultAndGoesRound) {
  script.results = {7, 0};
  worker.run();
  EXPECT_THAT(log.lines(), ElementsAre(MatchesRegex(tagged("Event base exited in an unknown way: 7"))));
  EXPECT_EQ(log.entries()[0].level, spdlog::level::err);
}

class EventBaseManagerTrouble : public EventBaseManager, public testing::WithParamInterface<int> {};

TEST_P(EventBaseManagerTrouble, IsLeftWhenTheLoopWasToldToStop) {
  script.results = {GetParam(), 0};
  script.on_entry = [this] { stop_from_elsewhere(); };
  worker.run();
  EXPECT_THAT(script.flags, SizeIs(1));
  EXPECT_THAT(log.lines(), SizeIs(1));
}

INSTANTIATE_TEST_SUITE_P(Results, EventBaseManagerTrouble, testing::Values(-1, 7));

TEST_F(EventBaseManager, ARealTroubleIsToldUntilTheLoopIsStopped) {
  manager.start_all();
  post([this] {
    // A loop within the loop is what libevent refuses.
    script.on_entry = [this] {
      if (script.flags.size() == 4) {
        stop_from_elsewhere();
      }
    };
    worker.run();
  });
  worker.join();
  EXPECT_THAT(log.lines(), SizeIs(3));
}

TEST_F(EventBaseManager, StoppedBeforeItIsStartedDoesNotRun) {
  stop_from_elsewhere();
  manager.start_all();
  worker.join();
  EXPECT_THAT(script.flags, IsEmpty());
  expect_runs_again();
}

TEST_F(EventBaseManager, StoppedWhileTheLoopIsBeingEnteredLeavesIt) {
  script.on_entry = [this] { stop_from_elsewhere(); };
  worker.run();
  EXPECT_THAT(script.flags, SizeIs(1));
  script.on_entry = [] {};
  expect_runs_again();
}

TEST_F(EventBaseManager, StoppedWhileItWaitsLeavesTheLoop) {
  manager.start_all();
  wait_for_posts();
  worker.stop();
  worker.join();
  expect_runs_again();
}

TEST_F(EventBaseManager, StoppedDuringACallbackEndsItAndRunsNoOther) {
  bool ended = false;
  bool other_ran = false;
  post([&] {
    stop_from_elsewhere();
    ended = true;
  });
  post([&] { other_ran = true; });
  manager.start_all();
  worker.join();
  EXPECT_TRUE(ended);
  EXPECT_FALSE(other_ran);
  expect_runs_again();
  EXPECT_TRUE(other_ran) << "what was posted waits for the next time";
}

TEST_F(EventBaseManager, StoppedByACallbackLeavesTheLoop) {
  manager.start_all();
  post([this] { worker.stop(); });
  worker.join();
  expect_runs_again();
}

TEST_F(EventBaseManager, StoppedTwiceLeavesTheLoopOnce) {
  manager.start_all();
  wait_for_posts();
  worker.stop();
  worker.stop();
  worker.join();
  stop_from_elsewhere();
  expect_runs_again();
}

TEST_F(EventBaseManager, StoppedBySeveralThreadsAtOnceLeavesTheLoop) {
  manager.start_all();
  wait_for_posts();
  std::vector<std::thread> stoppers;
  for (int i = 0; i < 4; ++i) {
    stoppers.emplace_back([this] { worker.stop(); });
  }
  for (auto& stopper : stoppers) {
    stopper.join();
  }
  worker.join();
  expect_runs_again();
}

TEST_F(EventBaseManager, StoppedAtAnyMomentOfItsStartLeavesTheLoop) {
  for (int round = 0; round < 300; ++round) {
    worker.start();
    worker.spawn();
    worker.stop();
    worker.join();
  }
  expect_runs_again();
}

TEST_F(EventBaseManager, LetsGoOfWhatIsPostedWhenItDiesWithoutRunningIt) {
  const auto held = std::make_shared<int>(0);
  {
    worker_manager_imp_t its_manager;
    event_base_manager_t mortal(its_manager);
    zyl::post(mortal.event_base(), [held] { ++*held; });
    mortal.stop();
    EXPECT_EQ(held.use_count(), 2);
  }
  EXPECT_EQ(held.use_count(), 1);
  EXPECT_EQ(*held, 0);
}

/// The entry that these words lead to.
const status_entry_t& find(const status_entry_t& tree, const std::vector<std::string>& words) {
  const status_entry_t* found = &tree;
  for (const auto& word : words) {
    for (const auto& entry : found->entries) {
      if (entry.word == word) {
        found = &entry;
        break;
      }
    }
  }
  return *found;
}

TEST_F(EventBaseManager, ListsItsEventsForPeople) {
  const std::string without = worker.dump_events();
  event* waiting = event_new(
      worker.event_base(), STDIN_FILENO, EV_PERSIST, [](evutil_socket_t, short, void*) {}, this);
  const timeval long_time{3600, 0};
  event_add(waiting, &long_time);
  const std::string with = worker.dump_events();
  event_free(waiting);
  EXPECT_THAT(with, HasSubstr("Timeout="));
  EXPECT_THAT(with, EndsWith("\n\n")) << "the last line's end, and one behind the list";
  EXPECT_THAT(without, testing::Not(HasSubstr("Timeout=")));
  EXPECT_EQ(worker.dump_events(), without);
}

TEST_F(EventBaseManager, ListsItsEventsWhileItRuns) {
  manager.start_all();
  wait_for_posts();
  EXPECT_THAT(worker.dump_events(), EndsWith("\n"));
}

TEST_F(EventBaseManager, ShowsItsEventsInItsStatusTree) {
  const status_entry_t tree = worker.status();
  EXPECT_EQ(tree.word, "event_base_manager");
  ASSERT_THAT(tree.entries, SizeIs(1));
  EXPECT_EQ(tree.entries[0].word, "event_base");
  EXPECT_EQ(find(tree, {"event_base", "events"}).read(), worker.dump_events());
}

TEST_F(EventBaseManager, IsStoppedByTheWordKillOfItsStatusTree) {
  manager.start_all();
  wait_for_posts();
  const status_entry_t tree = worker.status();
  const status_entry_t& kill = find(tree, {"event_base", "kill"});
  EXPECT_EQ(kill.word, "kill");
  EXPECT_EQ(kill.read(), "");
  worker.join();
  expect_runs_again();
}

using EventBaseManagerDeathTest = EventBaseManager;

TEST_F(EventBaseManagerDeathTest, DestroyedWhileItRunsEndsTheProcess) {
  EXPECT_EXIT(
      {
        event_base_manager_t unjoined(manager);
        unjoined.spawn();
      },
      testing::KilledBySignal(SIGABRT), "terminate");
}

}  // namespace
