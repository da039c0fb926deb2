#include "zyl/qt/property_monitor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QSignalSpy>
#include <QSocketNotifier>
#include <QTest>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "test_support/fake_property_service.h"

using test_support::fake_property_service_t;
using testing::ElementsAre;
using testing::Pair;

namespace {

using namespace std::string_literals;

constexpr int generousMs = 20'000;

class PropertyMonitorTest : public testing::Test {
 protected:
  /// A monitor of `paths` whose requests the service has heard.
  void watch(const QList<QByteArray>& paths) {
    monitor = std::make_unique<PropertyMonitor>(paths);
    spy = std::make_unique<QSignalSpy>(monitor.get(), &PropertyMonitor::valueChanged);
    ASSERT_TRUE(service.hears_count(3 * static_cast<std::size_t>(paths.size())));
  }

  bool hears(int count) const {
    return QTest::qWaitFor([&] { return spy->count() >= count; }, generousMs);
  }

  std::vector<std::pair<QByteArray, QByteArray>> told() const {
    std::vector<std::pair<QByteArray, QByteArray>> changes;
    for (const auto& arguments : *spy) {
      changes.emplace_back(arguments[0].toByteArray(), arguments[1].toByteArray());
    }
    return changes;
  }

  fake_property_service_t service;
  std::unique_ptr<PropertyMonitor> monitor;
  std::unique_ptr<QSignalSpy> spy;
};

}  // namespace

TEST_F(PropertyMonitorTest, CreatesMonitorsAndGetsEachPathInOrder) {
  watch({"/a", "/b"});
  monitor->addProperties({"/c"});
  ASSERT_TRUE(service.hears_count(9));
  EXPECT_THAT(service.requests(),
              ElementsAre(ElementsAre("create", "/a"), ElementsAre("monitor", "/a"), ElementsAre("get", "/a"),
                          ElementsAre("create", "/b"), ElementsAre("monitor", "/b"), ElementsAre("get", "/b"),
                          ElementsAre("create", "/c"), ElementsAre("monitor", "/c"), ElementsAre("get", "/c")));
}

TEST_F(PropertyMonitorTest, FirstAnswerIsToldLikeAChange) {
  watch({"/a"});
  EXPECT_EQ(monitor->value("/a"), QByteArray());
  service.send({"get_response", "/a", "1"});
  ASSERT_TRUE(hears(1));
  EXPECT_THAT(told(), ElementsAre(Pair("/a", "1")));
  EXPECT_EQ(monitor->value("/a"), "1");
}

TEST_F(PropertyMonitorTest, TwoChangesInOneReadAreBothToldInOrder) {
  watch({"/a"});
  service.send_bytes(zyl::build_frame({"changed", "/a", "1"}) + zyl::build_frame({"changed", "/a", "2"}));
  ASSERT_TRUE(hears(2));
  EXPECT_THAT(told(), ElementsAre(Pair("/a", "1"), Pair("/a", "2")));
}

TEST_F(PropertyMonitorTest, UnchangedValueIsToldAgain) {
  watch({"/a"});
  service.send({"changed", "/a", "1"});
  service.send({"changed", "/a", "1"});
  ASSERT_TRUE(hears(2));
  EXPECT_EQ(spy->count(), 2);
}

TEST_F(PropertyMonitorTest, UnwatchedPathsErrorsAndUnknownCommandsAreDropped) {
  watch({"/a"});
  service.send({"changed", "/other", "1"});
  service.send({"error", "no_property", "/a"});
  service.send({"error", "/a", "1"});
  service.send({"changed", "/a"});
  service.send({"renamed", "/a", "1"});
  service.send({"changed", "/a", "last"});
  ASSERT_TRUE(hears(1));
  EXPECT_THAT(told(), ElementsAre(Pair("/a", "last")));
  EXPECT_EQ(monitor->value("/other"), QByteArray());
}

TEST_F(PropertyMonitorTest, AskingForAnUnwatchedPathDoesNotAddIt) {
  watch({"/a"});
  EXPECT_EQ(monitor->value("/other"), QByteArray());
  service.send({"changed", "/other", "1"});
  monitor->setValue("/other", "2");
  monitor->setValue("/a", "3");
  ASSERT_TRUE(service.hears({"set", "/a", "3"}));
  EXPECT_EQ(service.requests().size(), 4U);
  service.send({"changed", "/a", "3"});
  ASSERT_TRUE(hears(1));
  EXPECT_THAT(told(), ElementsAre(Pair("/a", "3")));
}

TEST_F(PropertyMonitorTest, WritingLeavesTheCacheToTheEcho) {
  watch({"/a"});
  monitor->setValue("/a", "1");
  ASSERT_TRUE(service.hears({"set", "/a", "1"}));
  EXPECT_EQ(monitor->value("/a"), QByteArray());
  service.send({"changed", "/a", "1"});
  ASSERT_TRUE(hears(1));
  EXPECT_EQ(monitor->value("/a"), "1");
}

TEST_F(PropertyMonitorTest, WatchingAPathAgainEmptiesItsValueUntilTheAnswer) {
  watch({"/a"});
  service.send({"changed", "/a", "1"});
  ASSERT_TRUE(hears(1));
  monitor->addProperties({"/a"});
  EXPECT_EQ(monitor->value("/a"), QByteArray());
  EXPECT_TRUE(service.hears_count(6));
}

TEST_F(PropertyMonitorTest, TextsEndAtTheirFirstNul) {
  watch({"/a"});
  monitor->setValue("/a", QByteArray("1\0002", 3));
  EXPECT_TRUE(service.hears({"set", "/a", "1"}));
  service.send({"changed", "/a\0/b"s, "3\0004"s});
  ASSERT_TRUE(hears(1));
  EXPECT_THAT(told(), ElementsAre(Pair("/a", "3")));
}

TEST_F(PropertyMonitorTest, ServiceThatGoesAwayFreezesTheCacheAndIsNoLongerWatched) {
  watch({"/a"});
  service.send({"changed", "/a", "1"});
  ASSERT_TRUE(hears(1));
  service.close_clients();
  const auto* notifier = monitor->findChild<QSocketNotifier*>();
  ASSERT_NE(notifier, nullptr);
  EXPECT_TRUE(QTest::qWaitFor([&] { return !notifier->isEnabled(); }, generousMs));
  monitor->setValue("/a", "2");
  EXPECT_EQ(monitor->value("/a"), "1");
  EXPECT_EQ(spy->count(), 1);
}

TEST_F(PropertyMonitorTest, ServiceThatEndsItsSendingSideIsNoLongerWatched) {
  watch({"/a"});
  service.send({"changed", "/a", "1"});
  service.end_sending();
  const auto* notifier = monitor->findChild<QSocketNotifier*>();
  ASSERT_NE(notifier, nullptr);
  EXPECT_TRUE(QTest::qWaitFor([&] { return !notifier->isEnabled(); }, generousMs));
  EXPECT_THAT(told(), ElementsAre(Pair("/a", "1")));
}

TEST(PropertyMonitorAlone, WorksWithoutAServiceAndStaysEmpty) {
  PropertyMonitor monitor({"/a"});
  QSignalSpy spy(&monitor, &PropertyMonitor::valueChanged);
  // If each request waited, all of them together would take longer than a test may.
  QList<QByteArray> many;
  for (int i = 0; i < 1000; ++i) {
    many.append("/b" + QByteArray::number(i));
  }
  monitor.addProperties(many);
  monitor.setValue("/a", "1");
  EXPECT_EQ(monitor.value("/a"), QByteArray());
  EXPECT_NE(monitor.findChild<QSocketNotifier*>(), nullptr);
  QCoreApplication::processEvents();
  EXPECT_EQ(spy.count(), 0);
}
