// libevent's `event_new` is defined here anew, in front of the library's: it does what that does, unless a test wants
// no event to be had.

#include "control_lib/src/property_monitor_engine.h"

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <memory>
#include <new>
#include <sstream>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "control_lib/src/event_base_manager.h"
#include "control_lib/src/worker_manager_imp.h"
#include "test_support/fake_property_service.h"
#include "test_support/journal.h"
#include "test_support/log_capture.h"
#include "test_support/loop_until.h"
#include "zyl/event_loop.h"
#include "zyl/post.h"

using control_lib::property_monitor_engine_t;
using control_lib::property_response_e;
using test_support::fake_property_service_t;
using test_support::log_capture_t;
using test_support::loop_until;
using testing::ElementsAre;
using testing::FieldsAre;

namespace {

bool refuse_events = false;

}  // namespace

extern "C" event* event_new(event_base* base, evutil_socket_t fd, short events, event_callback_fn call,
                            void* argument) {
  static const auto library = reinterpret_cast<decltype(&event_new)>(dlsym(RTLD_NEXT, "event_new"));
  return refuse_events ? nullptr : library(base, fd, events, call, argument);
}

namespace {

constexpr auto changed = property_response_e::changed;
constexpr auto get = property_response_e::get;
constexpr auto no_prop_error = property_response_e::no_prop_error;

/// Keeps what it hears.
struct recording_observer_t : control_lib::property_observer_eb_t {
  void on_property(property_response_e kind, const std::string& path, const std::string& value) override {
    heard.emplace_back(kind, path, value);
  }
  std::vector<std::tuple<property_response_e, std::string, std::string>> heard;
};

/// Notes what it hears in a journal that it shares with others.
struct noting_observer_t : control_lib::property_observer_eb_t {
  noting_observer_t(test_support::journal_t& shared_journal, const char* own_name)
      : journal(shared_journal), name(own_name) {}
  void on_property(property_response_e kind, const std::string& path, const std::string& value) override {
    journal.note(name, static_cast<int>(kind), path, value);
    ++heard;
  }
  test_support::journal_t& journal;
  const char* name;
  int heard = 0;
};

/// Promises the first value that it hears.
struct promising_observer_t : control_lib::property_observer_eb_t {
  void on_property(property_response_e /*kind*/, const std::string& /*path*/, const std::string& value) override {
    told.set_value(value);
  }
  std::promise<std::string> told;
};

class PropertyMonitorEngine : public testing::Test {
 protected:
  bool hears(const recording_observer_t& listener, std::size_t count) {
    return loop_until(loop.base(), [&] { return listener.heard.size() >= count; });
  }

  /// Until the service has heard that many requests.
  bool requested(std::size_t count) {
    return loop_until(loop.base(), [&] { return service->requests().size() >= count; });
  }

  /// Until what was posted so far has run.
  bool posts_ran() {
    bool ran = false;
    zyl::post(loop.base(), [&] { ran = true; });
    return loop_until(loop.base(), [&] { return ran; });
  }

  /// The loop polls the connection once, then never again, and the observer hears nothing.
  void expect_one_poll(const log_capture_t& log) {
    const auto polls = [&] {
      const auto lines = log.lines();
      return std::count(lines.begin(), lines.end(), "property_monitor_eb_t::poll");
    };
    ASSERT_TRUE(loop_until(loop.base(), [&] { return polls() > 0; }));
    for (int turn = 0; turn < 5; ++turn) {
      ASSERT_TRUE(posts_ran());
    }
    EXPECT_EQ(polls(), 1);
    EXPECT_TRUE(observer.heard.empty());
  }

  /// How many events of the loop wait for a descriptor.
  int watched_descriptors() {
    int count = 0;
    const auto add = [](const event_base* /*base*/, const event* seen, void* counted) {
      *static_cast<int*>(counted) += (event_get_events(seen) & EV_READ) != 0 ? 1 : 0;
      return 0;
    };
    event_base_foreach_event(loop.base(), add, &count);
    return count;
  }

  zyl::event_loop_t loop;
  std::unique_ptr<fake_property_service_t> service = std::make_unique<fake_property_service_t>();
  recording_observer_t observer;
};

}  // namespace

TEST_F(PropertyMonitorEngine, IsASessionUnderTheNameOfItsClass) {
  property_monitor_engine_t engine(loop.base());
  EXPECT_EQ(control_lib::session_t::find("property_monitor_engine_t"), &engine);
}

TEST_F(PropertyMonitorEngine, ListensOnTheLoopOfAWorker) {
  control_lib::worker_manager_imp_t manager;
  control_lib::event_base_manager_t worker(manager);
  property_monitor_engine_t engine(worker);
  promising_observer_t waiting;
  engine.monitor("/p", &waiting);
  manager.start_all();
  EXPECT_TRUE(service->hears({"monitor", "/p"}));
  service->send({"changed", "/p", "1"});
  auto told = waiting.told.get_future();
  ASSERT_EQ(told.wait_for(std::chrono::seconds(20)), std::future_status::ready);
  EXPECT_EQ(told.get(), "1");
  manager.stop_all();
}

TEST_F(PropertyMonitorEngine, CreatesGetsAndMonitorsANewPath) {
  property_monitor_engine_t engine(loop.base());
  engine.monitor("/a", &observer);
  ASSERT_TRUE(requested(3));
  EXPECT_THAT(service->requests(),
              ElementsAre(ElementsAre("create", "/a"), ElementsAre("get", "/a"), ElementsAre("monitor", "/a")));
}

TEST_F(PropertyMonitorEngine, TellsAnswersAndChangesToTheObserversOfThePath) {
  property_monitor_engine_t engine(loop.base());
  engine.monitor("/a", &observer);
  ASSERT_TRUE(requested(3));
  service->send({"get_response", "/a", "1"});
  service->send({"changed", "/a", "2"});
  ASSERT_TRUE(hears(observer, 2));
  EXPECT_THAT(observer.heard, ElementsAre(FieldsAre(get, "/a", "1"), FieldsAre(changed, "/a", "2")));
}

TEST_F(PropertyMonitorEngine, SecondObserverMakesAllOfThePathHearTheValueAgain) {
  service = nullptr;
  service = std::make_unique<fake_property_service_t>(fake_property_service_t::from({{"/a", "1"}}));
  property_monitor_engine_t engine(loop.base());
  engine.monitor("/a", &observer);
  ASSERT_TRUE(hears(observer, 1));
  recording_observer_t newcomer;
  engine.monitor("/a", &newcomer);
  ASSERT_TRUE(hears(newcomer, 1));
  EXPECT_THAT(newcomer.heard, ElementsAre(FieldsAre(get, "/a", "1")));
  EXPECT_THAT(observer.heard, ElementsAre(FieldsAre(get, "/a", "1"), FieldsAre(get, "/a", "1")));
  EXPECT_THAT(service->requests(), ElementsAre(ElementsAre("create", "/a"), ElementsAre("get", "/a"),
                                               ElementsAre("monitor", "/a"), ElementsAre("get", "/a")));
}

TEST_F(PropertyMonitorEngine, CallsTheObserversOfAPathInTheOrderOfTheirRegistration) {
  property_monitor_engine_t engine(loop.base());
  test_support::journal_t journal;
  noting_observer_t first(journal, "first");
  noting_observer_t second(journal, "second");
  engine.monitor("/a", &first);
  engine.monitor("/a", &second);
  ASSERT_TRUE(requested(4));
  service->send({"changed", "/a", "1"});
  service->send({"get_response", "/a", "2"});
  service->send({"error", "/a", "/b"});
  ASSERT_TRUE(loop_until(loop.base(), [&] { return second.heard >= 3; }));
  EXPECT_THAT(journal.take(), ElementsAre("first 0 /a 1", "second 0 /a 1", "first 1 /a 2", "second 1 /a 2",
                                          "first 2 /b ", "second 2 /b "));
}

TEST_F(PropertyMonitorEngine, ChangeOfAnUnobservedPathHasNoEffect) {
  property_monitor_engine_t engine(loop.base());
  engine.monitor("/a", &observer);
  ASSERT_TRUE(requested(3));
  service->send({"changed", "/other", "1"});
  service->send({"renamed", "/a", "1"});
  service->send({"changed", "/a", "last"});
  ASSERT_TRUE(hears(observer, 1));
  EXPECT_THAT(observer.heard, ElementsAre(FieldsAre(changed, "/a", "last")));
}

TEST_F(PropertyMonitorEngine, ErrorReachesObserversOnlyByItsSecondFieldAndNamesTheThird) {
  property_monitor_engine_t engine(loop.base());
  engine.monitor("/a", &observer);
  ASSERT_TRUE(requested(3));
  service->send({"error", "no_property", "/a"});
  service->send({"error", "/a", "/missing"});
  ASSERT_TRUE(hears(observer, 1));
  EXPECT_THAT(observer.heard, ElementsAre(FieldsAre(no_prop_error, "/missing", "")));
}

TEST_F(PropertyMonitorEngine, MonitorBeforeTheConnectionSendsNothingUntilItStands) {
  service = nullptr;
  log_capture_t log("ctl_property_monitor", spdlog::level::debug);
  property_monitor_engine_t engine(loop.base());
  ASSERT_EQ(log.entries().size(), 1U);
  EXPECT_EQ(log.entries()[0].level, spdlog::level::err);
  EXPECT_EQ(log.entries()[0].text, "property_monitor_eb_t property_engine connect failed");
  service = std::make_unique<fake_property_service_t>();
  engine.monitor("/a", &observer);
  engine.monitor("/a", &observer);
  ASSERT_TRUE(posts_ran());
  EXPECT_TRUE(log.said("property_monitor_eb_t::send_prop_monitor /a (not connected)"));
  EXPECT_TRUE(log.said("property_monitor_eb_t::send_get /a (not connected)"));
  EXPECT_FALSE(engine.set("/a", "1"));
  EXPECT_TRUE(service->requests().empty());

  engine.connect();
  EXPECT_TRUE(engine.set("/a", "1"));
  ASSERT_TRUE(requested(4));
  EXPECT_THAT(service->requests(), ElementsAre(ElementsAre("create", "/a"), ElementsAre("get", "/a"),
                                               ElementsAre("monitor", "/a"), ElementsAre("set", "/a", "1")));
}

TEST_F(PropertyMonitorEngine, ConnectingAgainWatchesTheNewConnection) {
  property_monitor_engine_t engine(loop.base());
  engine.monitor("/a", &observer);
  ASSERT_TRUE(requested(3));
  service->close_clients();
  ASSERT_TRUE(posts_ran());
  engine.connect();
  ASSERT_TRUE(requested(6));
  service->send({"changed", "/a", "1"});
  ASSERT_TRUE(hears(observer, 1));
  EXPECT_THAT(observer.heard, ElementsAre(FieldsAre(changed, "/a", "1")));
}

TEST_F(PropertyMonitorEngine, FailedReconnectionLeavesNothingOnTheClosedDescriptor) {
  const int before = watched_descriptors();
  property_monitor_engine_t engine(loop.base());
  EXPECT_EQ(watched_descriptors(), before + 1);
  service = nullptr;
  engine.connect();
  ASSERT_TRUE(posts_ran());
  EXPECT_EQ(watched_descriptors(), before);
}

TEST_F(PropertyMonitorEngine, ObserverMayJoinFromAnotherThreadWhileTheLoopRuns) {
  service = nullptr;
  service = std::make_unique<fake_property_service_t>(fake_property_service_t::from({{"/a", "1"}, {"/b", "2"}}));
  property_monitor_engine_t engine(loop.base());
  recording_observer_t other;
  std::thread joining([&] {
    engine.monitor("/a", &observer);
    engine.monitor("/b", &other);
    engine.connect();
  });
  EXPECT_TRUE(hears(observer, 1));
  EXPECT_TRUE(hears(other, 1));
  joining.join();
  EXPECT_EQ(observer.heard[0], std::make_tuple(get, "/a", "1"));
  EXPECT_EQ(other.heard[0], std::make_tuple(get, "/b", "2"));
}

TEST_F(PropertyMonitorEngine, HangUpIsNoticedByNobodyAndTheLoopComesToRest) {
  log_capture_t log("ctl_property_monitor", spdlog::level::debug);
  property_monitor_engine_t engine(loop.base());
  engine.monitor("/a", &observer);
  ASSERT_TRUE(requested(3));
  service->close_clients();
  expect_one_poll(log);
}

TEST_F(PropertyMonitorEngine, LoopComesToRestWhenTheServiceEndsItsSendingSide) {
  log_capture_t log("ctl_property_monitor", spdlog::level::debug);
  property_monitor_engine_t engine(loop.base());
  engine.monitor("/a", &observer);
  ASSERT_TRUE(requested(3));
  service->end_sending();
  expect_one_poll(log);
}

TEST_F(PropertyMonitorEngine, WhatIsStillPostedWhenItDiesDoesNothing) {
  auto engine = std::make_unique<property_monitor_engine_t>(loop.base());
  engine->monitor("/a", &observer);
  engine.reset();
  ASSERT_TRUE(posts_ran());
  EXPECT_TRUE(service->requests().empty());
}

TEST_F(PropertyMonitorEngine, LoopThatCannotWatchTheConnectionLeavesNone) {
  property_monitor_engine_t engine(loop.base());
  refuse_events = true;
  EXPECT_THROW(engine.connect(), std::bad_alloc);
  EXPECT_THROW(property_monitor_engine_t(loop.base()), std::bad_alloc);
  refuse_events = false;
  EXPECT_TRUE(service->has_clients(0));
  EXPECT_FALSE(engine.set("/a", "1"));
  engine.connect();
  EXPECT_TRUE(engine.set("/a", "1"));
}

TEST_F(PropertyMonitorEngine, TellsItsWorkAtDebugLevel) {
  log_capture_t log("ctl_property_monitor", spdlog::level::debug);
  property_monitor_engine_t engine(loop.base());
  engine.monitor("/a", &observer);
  ASSERT_TRUE(requested(3));
  engine.monitor("/a", &observer);
  ASSERT_TRUE(requested(4));
  service->send({"changed", "/a", "1"});
  ASSERT_TRUE(hears(observer, 2));
  EXPECT_THAT(log.lines(),
              ElementsAre("property_monitor_eb_t::connect() CONNECTED", "property_monitor_eb_t::monitor /a",
                          "property_monitor_eb_t::send_prop_monitor /a (connected)",
                          "property_monitor_eb_t::monitor /a", "property_monitor_eb_t::send_get /a (connected)",
                          "property_monitor_eb_t::poll", "property_monitor_eb_t::on_socket_event changed /a 1"));
  for (const auto& entry : log.entries()) {
    EXPECT_EQ(entry.level, spdlog::level::debug) << entry.text;
  }
}

TEST(PropertyResponse, PrintsAsItsName) {
  std::ostringstream out;
  out << changed << ' ' << get << ' ' << no_prop_error << ' ' << static_cast<property_response_e>(9);
  EXPECT_EQ(out.str(), "property_response_e::changed property_response_e::get property_response_e::no_prop_error 9");
  EXPECT_EQ(static_cast<int>(changed), 0);
  EXPECT_EQ(static_cast<int>(get), 1);
  EXPECT_EQ(static_cast<int>(no_prop_error), 2);
}
