#include "app/streamer_controller.h"

#include <gtest/gtest.h>

#include <QThread>

#include "test_support/log_capture.h"
#include "test_support/qt_loop_until.h"

namespace {

using vgn_control::StreamerController;

TEST(StreamerController, RunsTheVideoSideOnItsThreadUntilItIsStoppedDirectly) {
  const test_support::log_capture_t log("streamerproxy");
  QObject owner;
  StreamerController controller(&owner);
  QThread thread;
  controller.moveToThread(&thread);
  bool finished = false;
  QObject::connect(&thread, &QThread::started, &controller, &StreamerController::start);
  QObject::connect(&controller, &StreamerController::finished, &owner, [&] { finished = true; });
  QObject::connect(&controller, &StreamerController::finished, &thread, &QThread::quit, Qt::DirectConnection);
  thread.start();
  EXPECT_TRUE(test_support::qt_loop_until([&] { return log.said("vgn_streamer_proxy::run"); }));
  EXPECT_FALSE(finished);
  controller.stop();
  EXPECT_TRUE(test_support::qt_loop_until([&] { return finished; }));
  thread.wait();
}

TEST(StreamerController, PassesTheDesignsStateOnWithoutItsThread) {
  const test_support::log_capture_t log("streamerproxy");
  StreamerController controller(nullptr);
  controller.designRunning();
  controller.designStopped();
  EXPECT_EQ(log.lines(), (std::vector<std::string>{"vgn_streamer_proxy::set_design_running",
                                                   "vgn_streamer_proxy::set_design_stopped"}));
}

TEST(StreamerController, HasNoParentSoThatItCanMoveToAThread) {
  QObject owner;
  const StreamerController controller(&owner);
  EXPECT_EQ(controller.parent(), nullptr);
}

}  // namespace
