#include "zyl/qt/firmware_monitor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <memory>
#include <string>
#include <utility>

#include "test_support/fake_property_service.h"
#include "test_support/qt_loop_until.h"

using test_support::fake_property_service_t;
using test_support::qt_loop_until;
using testing::ElementsAre;

namespace {

const char* const state_path = "/sys/fw_status/state";
const char* const progress_path = "/sys/fw_status/progress";

class FirmwareMonitorTest : public testing::Test {
 protected:
  FirmwareMonitorTest() { EXPECT_TRUE(service.hears_count(6)); }

  /// Has the service tell the property. False if the monitor does not tell of it once.
  bool tell(const char* path, const std::string& value) {
    const QSignalSpy spy(&monitor, &FirmwareMonitor::changed);
    service.send({"changed", path, value});
    return qt_loop_until([&] { return spy.count() > 0; }) && spy.count() == 1;
  }

  fake_property_service_t service;
  FirmwareMonitor monitor;
};

}  // namespace

TEST_F(FirmwareMonitorTest, WatchesBothProperties) {
  EXPECT_THAT(service.requests(),
              ElementsAre(ElementsAre("create", state_path), ElementsAre("monitor", state_path),
                          ElementsAre("get", state_path), ElementsAre("create", progress_path),
                          ElementsAre("monitor", progress_path), ElementsAre("get", progress_path)));
}

TEST_F(FirmwareMonitorTest, BeforeTheFirstAnswerItIsIdleAtZero) {
  EXPECT_EQ(monitor.state(), FirmwareMonitor::Idle);
  EXPECT_EQ(monitor.progress(), 0);
}

TEST_F(FirmwareMonitorTest, EachStateTextHasItsNumber) {
  const std::pair<const char*, int> rows[] = {{"error", 5},    {"complete", 4},     {"fpga_write", 3},
                                              {"fw_write", 2}, {"initializing", 1}, {"idle", 0}};
  for (const auto& [text, number] : rows) {
    ASSERT_TRUE(tell(state_path, text));
    EXPECT_EQ(static_cast<int>(monitor.state()), number) << text;
  }
}

TEST_F(FirmwareMonitorTest, AnyOtherStateTextCountsAsIdle) {
  for (const char* text : {"", "Error", "error ", "fw", "fw_write2", "5"}) {
    ASSERT_TRUE(tell(state_path, "complete"));
    ASSERT_TRUE(tell(state_path, text));
    EXPECT_EQ(monitor.state(), FirmwareMonitor::Idle) << text;
  }
}

TEST_F(FirmwareMonitorTest, ProgressIsADecimalNumberOrZero) {
  const std::pair<const char*, int> rows[] = {{"42", 42}, {"", 0},     {"100", 100}, {"0x10", 0},
                                              {"-1", -1}, {"half", 0}, {"010", 10},  {"4000000000", 0}};
  for (const auto& [text, number] : rows) {
    ASSERT_TRUE(tell(progress_path, text));
    EXPECT_EQ(monitor.progress(), number) << text;
  }
}

TEST_F(FirmwareMonitorTest, StateAndProgressDoNotTouchEachOther) {
  ASSERT_TRUE(tell(state_path, "fpga_write"));
  ASSERT_TRUE(tell(progress_path, "7"));
  EXPECT_EQ(monitor.state(), FirmwareMonitor::FpgaWrite);
  EXPECT_EQ(monitor.progress(), 7);
}

TEST_F(FirmwareMonitorTest, UnchangedValueIsToldAgain) {
  ASSERT_TRUE(tell(progress_path, "7"));
  EXPECT_TRUE(tell(progress_path, "7"));
}

TEST(FirmwareMonitorAlone, WithoutAServiceItIsIdleAtZero) {
  const FirmwareMonitor monitor;
  EXPECT_EQ(monitor.state(), FirmwareMonitor::Idle);
  EXPECT_EQ(monitor.progress(), 0);
}
