#include "app/runtime_engine_monitor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QMetaMethod>
#include <QThread>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include "test_support/fake_process.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using vgn_control::RuntimeEngineMonitor;

const std::string engine_name = test_support::name_for_processes();

class RuntimeEngineMonitorTest : public testing::Test {
 protected:
  RuntimeEngineMonitorTest() {
    QObject::connect(&monitor, &RuntimeEngineMonitor::statusChanged, &monitor,
                     [this](bool status) { told.push_back(status); });
  }

  RuntimeEngineMonitor monitor{QString::fromStdString(engine_name), 1};
  std::vector<bool> told;
};

TEST_F(RuntimeEngineMonitorTest, TellsNothingWhileTheEngineIsAway) {
  monitor.check();
  EXPECT_THAT(told, IsEmpty());
  EXPECT_FALSE(monitor.isRunning());
}

TEST_F(RuntimeEngineMonitorTest, TellsAtTheFirstLookOfAnEngineThatRunsAlready) {
  const test_support::fake_process_t engine(engine_name);
  monitor.check();
  EXPECT_THAT(told, ElementsAre(true));
  EXPECT_TRUE(monitor.isRunning());
}

TEST_F(RuntimeEngineMonitorTest, TellsOnceWhenTheEngineComesAndOnceWhenItGoes) {
  {
    const test_support::fake_process_t engine(engine_name);
    monitor.check();
    monitor.check();
  }
  monitor.check();
  monitor.check();
  EXPECT_THAT(told, ElementsAre(true, false));
  EXPECT_FALSE(monitor.isRunning());
}

TEST_F(RuntimeEngineMonitorTest, AnEngineThatRestartsBetweenTwoLooksIsNoChange) {
  auto engine = std::make_unique<test_support::fake_process_t>(engine_name);
  monitor.check();
  engine.reset();
  engine = std::make_unique<test_support::fake_process_t>(engine_name);
  monitor.check();
  EXPECT_THAT(told, ElementsAre(true));
}

TEST_F(RuntimeEngineMonitorTest, AnotherProcessWithALongerNameIsNotTheEngine) {
  const test_support::fake_process_t other(engine_name + "2");
  monitor.check();
  EXPECT_THAT(told, IsEmpty());
}

TEST_F(RuntimeEngineMonitorTest, OneEngineOfTwoThatGoesIsNoChange) {
  const test_support::fake_process_t first(engine_name);
  auto second = std::make_unique<test_support::fake_process_t>(engine_name);
  monitor.check();
  second.reset();
  monitor.check();
  EXPECT_THAT(told, ElementsAre(true));
}

TEST_F(RuntimeEngineMonitorTest, ANameOfFifteenCharactersIsFoundAndNoLongerOne) {
  const test_support::fake_process_t engine(engine_name + "2");
  RuntimeEngineMonitor exact(QString::fromStdString(engine_name + "2"), 1);
  exact.check();
  EXPECT_TRUE(exact.isRunning());
  const test_support::fake_process_t cut("a_longer_runtime_engine");
  RuntimeEngineMonitor longer("a_longer_runtime_engine", 1);
  longer.check();
  EXPECT_FALSE(longer.isRunning());
}

TEST_F(RuntimeEngineMonitorTest, AMonitorStoppedBeforeItsStartFinishesWithoutALook) {
  const test_support::fake_process_t engine(engine_name);
  int finished = 0;
  QObject::connect(&monitor, &RuntimeEngineMonitor::finished, &monitor, [&] { ++finished; });
  monitor.stop();
  monitor.start();
  EXPECT_EQ(finished, 1);
  EXPECT_THAT(told, IsEmpty());
}

TEST_F(RuntimeEngineMonitorTest, AStopByWhoeverHearsOfTheEngineEndsTheWatch) {
  const test_support::fake_process_t engine(engine_name);
  QObject::connect(&monitor, &RuntimeEngineMonitor::statusChanged, &monitor, &RuntimeEngineMonitor::stop);
  monitor.start();
  EXPECT_THAT(told, ElementsAre(true));
}

TEST_F(RuntimeEngineMonitorTest, PausesBehindEachLook) {
  const test_support::fake_process_t engine(engine_name);
  RuntimeEngineMonitor patient(QString::fromStdString(engine_name), 100);
  QElapsedTimer since_told;
  QObject::connect(&patient, &RuntimeEngineMonitor::statusChanged, &patient, [&] {
    since_told.start();
    patient.stop();
  });
  patient.start();
  ASSERT_TRUE(since_told.isValid());
  EXPECT_GE(since_told.elapsed(), 100);
}

TEST_F(RuntimeEngineMonitorTest, SaysWhatItTellsOfAlready) {
  std::vector<bool> said;
  QObject::connect(&monitor, &RuntimeEngineMonitor::statusChanged, &monitor,
                   [&] { said.push_back(monitor.isRunning()); });
  {
    const test_support::fake_process_t engine(engine_name);
    monitor.check();
  }
  monitor.check();
  EXPECT_THAT(said, ElementsAre(true, false));
  EXPECT_EQ(said, told);
}

TEST_F(RuntimeEngineMonitorTest, HasNoParentSoThatItCanMoveToAThread) { EXPECT_EQ(monitor.parent(), nullptr); }

TEST_F(RuntimeEngineMonitorTest, ItsSignalsComeBeforeItsSlotsInTheirOrder) {
  const QMetaObject& meta = RuntimeEngineMonitor::staticMetaObject;
  std::vector<std::string> methods;
  for (int index = meta.methodOffset(); index < meta.methodCount(); ++index) {
    methods.push_back(meta.method(index).methodSignature().toStdString());
  }
  EXPECT_THAT(methods, ElementsAre("statusChanged(bool)", "finished()", "start()", "stop()"));
}

TEST(RuntimeEngineMonitorThread, LooksOnItsThreadUntilItIsStoppedDirectly) {
  const test_support::fake_process_t engine(engine_name);
  RuntimeEngineMonitor monitor(QString::fromStdString(engine_name), 1);
  QThread thread;
  monitor.moveToThread(&thread);
  std::promise<bool> told;
  bool finished = false;
  QObject::connect(&thread, &QThread::started, &monitor, &RuntimeEngineMonitor::start);
  QObject::connect(
      &monitor, &RuntimeEngineMonitor::statusChanged, &monitor, [&](bool status) { told.set_value(status); },
      Qt::DirectConnection);
  QObject::connect(
      &monitor, &RuntimeEngineMonitor::finished, &monitor, [&] { finished = true; }, Qt::DirectConnection);
  thread.start();
  EXPECT_TRUE(told.get_future().get());
  monitor.stop();
  thread.quit();
  thread.wait();
  EXPECT_TRUE(finished);
}

}  // namespace
