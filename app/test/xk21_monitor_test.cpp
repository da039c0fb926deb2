#include "app/xk21_monitor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QMetaMethod>

#include "lnx/src/ktm5030.h"
#include "test_support/fake_ktm5030.h"
#include "test_support/fake_udev.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using vgn_control::XK21Monitor;

class XK21MonitorTest : public testing::Test {
 protected:
  XK21MonitorTest() { chip.set_mode_byte(1); }

  test_support::fake_udev_t machine;
  test_support::fake_ktm5030_t chip{machine};
  XK21Monitor monitor;
};

TEST_F(XK21MonitorTest, AStoppedDesignPutsTheChipToModeZero) {
  monitor.designStatusChanged("Stopped");
  EXPECT_EQ(chip.mode_byte(), 0);
  EXPECT_THAT(chip.requests(), ElementsAre(lnx::ktm5030_write_mode_request));
}

TEST_F(XK21MonitorTest, EveryStopWritesTheModeAgain) {
  monitor.designStatusChanged("Stopped");
  monitor.designStatusChanged("Stopped");
  EXPECT_THAT(chip.requests(), ElementsAre(lnx::ktm5030_write_mode_request, lnx::ktm5030_write_mode_request));
}

TEST_F(XK21MonitorTest, EveryOtherStatusLeavesTheChipAlone) {
  for (const char* status : {"", "OK", "stopped", "STOPPED", "Stopped ", " Stopped", "Stop", "Stopping", "0"}) {
    monitor.designStatusChanged(status);
  }
  EXPECT_EQ(chip.mode_byte(), 1);
  EXPECT_THAT(chip.requests(), IsEmpty());
}

TEST_F(XK21MonitorTest, AChipThatRefusesTheModeIsAskedAgainAtTheNextStop) {
  chip.fail(lnx::ktm5030_write_mode_request);
  monitor.designStatusChanged("Stopped");
  EXPECT_EQ(chip.mode_byte(), 1);
  monitor.designStatusChanged("Stopped");
  EXPECT_THAT(chip.requests(), ElementsAre(lnx::ktm5030_write_mode_request, lnx::ktm5030_write_mode_request));
}

TEST(XK21Monitor, AStopWithoutTheChipIsBorne) {
  XK21Monitor monitor;
  EXPECT_NO_THROW(monitor.designStatusChanged("Stopped"));
}

TEST(XK21Monitor, HasOneSlot) {
  const QMetaObject& meta = XK21Monitor::staticMetaObject;
  ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 1);
  EXPECT_EQ(meta.method(meta.methodOffset()).methodSignature(), "designStatusChanged(QByteArray)");
}

}  // namespace
