#include "app/streamer_controller.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QMetaMethod>
#include <QThread>
#include <memory>
#include <string>
#include <vector>

#include "app/vgn_streamer_proxy.h"
#include "test_support/journal.h"
#include "test_support/log_capture.h"
#include "test_support/mock_property_monitor.h"
#include "test_support/mock_ve_ipc.h"
#include "test_support/mock_vgn_zsd_interface.h"
#include "test_support/qt_log_capture.h"
#include "test_support/qt_loop_until.h"
#include "zyl/post.h"

namespace {

using vgn_control::StreamerController;
using vgn_control::vgn_streamer_proxy;

/// A controller whose proxy lives between doubles; its loop ends it as soon as it turns.
class StreamerControllerTest : public testing::Test {
 protected:
  vgn_streamer_proxy::deps_t doubles() {
    return {
        [this](event_base* loop) {
          zyl::post(loop, [this] {
            journal.note("loop turns");
            controller.stop();
          });
          return std::make_unique<test_support::mock_property_monitor_t>(journal);
        },
        [this](event_base* loop) { return std::make_unique<test_support::mock_vgn_zsd_interface_t>(loop, journal); },
        [this](event_base* loop) { return std::make_unique<test_support::mock_ve_ipc_t>(loop, journal); },
    };
  }

  // What happened, without what the proxy did with its parts between their first and their last.
  std::vector<std::string> mainEvents() {
    std::vector<std::string> lines = journal.take();
    std::erase_if(lines, [](const std::string& line) {
      return line.rfind("engine ", 0) == 0 || line.rfind("hdmi ", 0) == 0 || line.rfind("bus set ", 0) == 0;
    });
    return lines;
  }

  test_support::journal_t journal;
  test_support::qt_log_capture_t log{
      [this](const auto& line) { journal.note(line.type == QtInfoMsg ? "info" : "not info", line.text); }};
  StreamerController controller{std::make_unique<vgn_streamer_proxy>(nullptr, doubles())};
};

TEST_F(StreamerControllerTest, TellsItsStartThenRunsTheVideoSideAndTellsItsEnd) {
  QObject::connect(&controller, &StreamerController::finished, &controller, [this] { journal.note("finished"); });
  controller.start();
  EXPECT_THAT(mainEvents(),
              testing::ElementsAre("info StreamerController started", "bus monitor /xk_splash/0/ready",
                                   "bus monitor /xk_splash/1/ready", "loop turns", "bus gone", "finished"));
}

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

TEST_F(StreamerControllerTest, SpeaksInTheCategoryOfTheApplication) {
  controller.start();
  EXPECT_THAT(log.categories(), testing::ElementsAre("zyl.vgn.control"));
}

TEST(StreamerController, ItsSignalComesBeforeItsSlotsInTheirOrder) {
  const QMetaObject& meta = StreamerController::staticMetaObject;
  std::vector<std::string> methods;
  for (int index = meta.methodOffset(); index < meta.methodCount(); ++index) {
    methods.push_back(meta.method(index).methodSignature().toStdString());
  }
  EXPECT_THAT(methods, testing::ElementsAre("finished()", "start()", "designStopped()", "designRunning()"));
}

TEST(StreamerController, HasNoParentSoThatItCanMoveToAThread) {
  QObject owner;
  const StreamerController controller(&owner);
  EXPECT_EQ(controller.parent(), nullptr);
}

}  // namespace
