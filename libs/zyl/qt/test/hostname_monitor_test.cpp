#include "zyl/qt/hostname_monitor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QSignalSpy>

#include "test_support/fake_property_service.h"
#include "test_support/qt_loop_until.h"

using test_support::fake_property_service_t;
using test_support::qt_loop_until;
using testing::ElementsAre;

namespace {

const char* const path = "/sys/lan_daemon/hostname";

}  // namespace

TEST(HostnameMonitorTest, WatchesItsPropertyAlone) {
  const fake_property_service_t service;
  const HostnameMonitor monitor;
  ASSERT_TRUE(service.hears_count(3));
  EXPECT_THAT(service.requests(),
              ElementsAre(ElementsAre("create", path), ElementsAre("monitor", path), ElementsAre("get", path)));
  EXPECT_EQ(monitor.hostname(), QString());
}

TEST(HostnameMonitorTest, TellsTheFirstAnswerAndEachChangeAlsoToTheSame) {
  fake_property_service_t service(fake_property_service_t::from({{path, "endpoint-1"}}));
  const HostnameMonitor monitor;
  const QSignalSpy spy(&monitor, &HostnameMonitor::changed);
  ASSERT_TRUE(qt_loop_until([&] { return spy.count() == 1; }));
  EXPECT_EQ(spy[0][0].toString(), "endpoint-1");
  EXPECT_EQ(monitor.hostname(), "endpoint-1");

  service.send({"changed", path, "endpoint-2"});
  service.send({"changed", path, "endpoint-2"});
  service.send({"changed", path, ""});
  ASSERT_TRUE(qt_loop_until([&] { return spy.count() == 4; }));
  EXPECT_EQ(spy[1][0].toString(), "endpoint-2");
  EXPECT_EQ(spy[2][0].toString(), "endpoint-2");
  EXPECT_EQ(spy[3][0].toString(), "");
  EXPECT_EQ(monitor.hostname(), "");
}

TEST(HostnameMonitorTest, NameIsReadAsUtf8) {
  const fake_property_service_t service(fake_property_service_t::from({{path,
                                                                        "k\xC3\xBC"
                                                                        "che"}}));
  const HostnameMonitor monitor;
  const QSignalSpy spy(&monitor, &HostnameMonitor::changed);
  ASSERT_TRUE(qt_loop_until([&] { return spy.count() == 1; }));
  EXPECT_EQ(monitor.hostname(), QString(u'k') + QChar(0xFC) + "che");
}

TEST(HostnameMonitorTest, PropertyThatDoesNotExistIsNoChange) {
  fake_property_service_t service(fake_property_service_t::from({}));
  const HostnameMonitor monitor;
  const QSignalSpy spy(&monitor, &HostnameMonitor::changed);
  ASSERT_TRUE(service.hears({"get", path}));
  service.send({"changed", path, "last"});
  ASSERT_TRUE(qt_loop_until([&] { return spy.count() > 0; }));
  EXPECT_EQ(spy.count(), 1);
  EXPECT_EQ(spy[0][0].toString(), "last");
}

TEST(HostnameMonitorTest, WithoutAServiceTheNameIsEmpty) {
  const HostnameMonitor monitor;
  EXPECT_EQ(monitor.hostname(), QString());
}
