#include "app/vgn_control.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QMetaObject>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "app/test/vgn_control_fixture.h"
#include "test_support/fake_process.h"
#include "test_support/qt_loop_until.h"
#include "test_support/qt_methods.h"
#include "zyl/dev_options.h"

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using vgn_control::VgnControl;

TEST_F(VgnControlTest, WatchesItsPropertiesInOrderThenTheScreens) {
  startBlocked();
  std::vector<request_t> expected;
  for (const char* path : {engine_state, design_status, dev_options, id_mode, ui_control, hdmi1_properties,
                           hdmi2_properties, valid_format, hdmi1_screen, hdmi2_screen}) {
    for (const char* command : {"create", "monitor", "get"}) {
      expected.push_back({command, path});
    }
  }
  auto requests = service.requests();
  std::erase_if(requests, [](const request_t& request) { return request[0] == "set"; });
  EXPECT_EQ(requests, expected);
}

TEST_F(VgnControlTest, HasItsSignalsAndSlotsInOrder) {
  // Qt knows quint32 by the name of its own type.
  EXPECT_THAT(test_support::own_methods_of(VgnControl::staticMetaObject),
              ElementsAre("designStatusChanged(QByteArray)", "validFormatChanged(QByteArray)",
                          "propertyMonitorValueChanged(QByteArray,QByteArray)", "idKeyPressed(bool)",
                          "factoryResetKeyPressed(bool)", "setProperty(QByteArray,QByteArray)",
                          "runtimeEngineStatusChanged(bool)", "hdmiPropertiesChanged(uint,QString)"));
}

TEST_F(VgnControlTest, AnEngineStateThatIsEmptyAtTheStartIsAStop) {
  start();
  EXPECT_TRUE(isWritten(ui_control, "1"));
}

TEST_F(VgnControlTest, HandsTheScreensToTheDesignWhileTheEngineRunsOrStarts) {
  start();
  for (const char* state : {"Running", "Starting"}) {
    written(ui_control);
    tell(engine_state, state);
    EXPECT_THAT(written(ui_control), ElementsAre("0")) << state;
  }
  EXPECT_THAT(designStatuses, IsEmpty());
}

TEST_F(VgnControlTest, TakesAnyOtherEngineStateForAStop) {
  start();
  for (const char* state : {"Stopping", "Stopped", "running", ""}) {
    written(ui_control);
    designStatuses.clear();
    tell(engine_state, state);
    EXPECT_THAT(designStatuses, ElementsAre("Stopped")) << state;
    EXPECT_THAT(written(ui_control), ElementsAre("1")) << state;
  }
}

TEST_F(VgnControlTest, TellsOfAStopBeforeTheVideoSideHearsIt) {
  start();
  log.clear();
  std::optional<bool> video_side_knew;
  QObject::connect(control.get(), &VgnControl::designStatusChanged, control.get(),
                   [&] { video_side_knew = log.said("vgn_streamer_proxy::set_design_stopped"); });
  tell(engine_state, "Stopping");
  EXPECT_EQ(video_side_knew, false);
  EXPECT_TRUE(log.said("vgn_streamer_proxy::set_design_stopped"));
}

TEST_F(VgnControlTest, TellsTheVideoSideThatADesignRuns) {
  start();
  tell(engine_state, "Running");
  EXPECT_TRUE(log.said("vgn_streamer_proxy::set_design_running"));
}

TEST_F(VgnControlTest, TellsTheVideoSideBeforeItHandsTheScreensOver) {
  start();
  EXPECT_THAT(videoSideAtWriteOf(ui_control, "0", "Running"), Contains("vgn_streamer_proxy::set_design_running"));
  EXPECT_THAT(videoSideAtWriteOf(ui_control, "1", "Stopped"), Contains("vgn_streamer_proxy::set_design_stopped"));
}

TEST_F(VgnControlTest, LogsTheEngineStatusWithTheIdMode) {
  start();
  tell(id_mode, "on");
  tell(engine_state, "Running");
  tell(engine_state, "Stopped");
  const auto status = [](const char* text) {
    return AllOf(HasSubstr("VgnControl::runtimeEngineStatusChanged(bool)"),
                 ContainsRegex(std::string("Runtime engine status: *") + text + " +id mode: *\"?on\"?$"));
  };
  EXPECT_THAT(qt_log.lines(QtDebugMsg), testing::IsSupersetOf({status("true"), status("false")}));
}

TEST_F(VgnControlTest, FollowsTheRuntimeEngineProcess) {
  start();
  written(ui_control);
  {
    const test_support::fake_process_t engine("runtime_engine");
    EXPECT_TRUE(isWritten(ui_control, "0"));
    service.forget_requests();
  }
  EXPECT_TRUE(isWritten(ui_control, "1"));
  EXPECT_THAT(designStatuses, ElementsAre("Stopped"));
}

TEST_F(VgnControlTest, PassesTheDesignStatusOn) {
  start();
  tell(design_status, "OK");
  tell(design_status, "Faulted");
  EXPECT_THAT(designStatuses, ElementsAre("OK", "Faulted"));
  EXPECT_THAT(qt_log.lines(QtDebugMsg), testing::IsSupersetOf({MatchesRegex("design_status_updated +\"?OK\"?"),
                                                               MatchesRegex("design_status_updated +\"?Faulted\"?")}));
}

TEST_F(VgnControlTest, PassesTheValidFormatOn) {
  start();
  service.send({"changed", valid_format, "1"});
  EXPECT_TRUE(test_support::qt_loop_until([this] { return validFormats == std::vector<std::string>{"1"}; }));
}

TEST_F(VgnControlTest, KeepsTheBootSplashUntilThereIsAGoodDesign) {
  start();
  for (const char* screen : {hdmi1_screen, hdmi2_screen}) {
    written(screen);
    tell(design_status, "Faulted");
    tell(engine_state, "Stopped");
    EXPECT_THAT(written(screen), ElementsAre("boot_splash_screen", "boot_splash_screen")) << screen;
  }
}

TEST_F(VgnControlTest, ShowsDisconnectedOnceWhenAGoodDesignIsLost) {
  start();
  for (const char* screen : {hdmi1_screen, hdmi2_screen}) {
    tell(design_status, "OK");
    written(screen);
    tell(engine_state, "Stopping");
    tell(design_status, "Faulted");
    EXPECT_THAT(written(screen), ElementsAre("disconnected")) << screen;
  }
}

TEST_F(VgnControlTest, SetsTheDevelopmentOptions) {
  start();
  tell(dev_options, "fast loud");
  EXPECT_TRUE(zyl::dev_options::contains("fast"));
  EXPECT_TRUE(zyl::dev_options::contains("loud"));
  tell(dev_options, "");
  EXPECT_FALSE(zyl::dev_options::contains("fast"));
}

TEST_F(VgnControlTest, APathWithoutAReactionIsIgnored) {
  start();
  EXPECT_NO_THROW(control->propertyMonitorValueChanged("/nobody/asked", "1"));
  EXPECT_NO_THROW(control->propertyMonitorValueChanged("", ""));
  tell(ui_control, "1");
  tell(hdmi1_properties, "640x480");
  EXPECT_THAT(designStatuses, IsEmpty());
}

TEST_F(VgnControlTest, DoesNotWriteAPropertyThatItDoesNotWatch) {
  start();
  control->setProperty("/nobody/asked", "1");
  EXPECT_THAT(written("/nobody/asked"), IsEmpty());
  EXPECT_THAT(qt_log.lines(QtInfoMsg), Contains(MatchesRegex(setting("/nobody/asked", "1"))));
}

TEST_F(VgnControlTest, TheFirstPressOfTheIdKeyTurnsIdModeOnForFiveMinutes) {
  start();
  control->idKeyPressed(true);
  EXPECT_THAT(written(id_mode), ElementsAre("on"));
  EXPECT_TRUE(idModeTimer().isActive());
  EXPECT_FALSE(idModeTimer().isSingleShot());
  EXPECT_EQ(idModeTimer().interval(), 300'000);
}

TEST_F(VgnControlTest, IdModeLastsFiveMinutesFromItsLastRequest) {
  start();
  control->idKeyPressed(true);
  idModeTimer().start(600'000);
  // The bus has not echoed the first request yet, so this one asks for the same.
  control->idKeyPressed(true);
  EXPECT_THAT(written(id_mode), ElementsAre("on", "on"));
  EXPECT_EQ(idModeTimer().interval(), 300'000);
}

TEST_F(VgnControlTest, LogsTheRequestsOfIdMode) {
  start();
  control->idKeyPressed(true);
  expireIdMode();
  std::vector<std::string> lines = qt_log.lines(QtInfoMsg);
  std::erase_if(lines, [](const std::string& line) { return line.find("Id mode") == std::string::npos; });
  EXPECT_THAT(lines,
              ElementsAre(MatchesRegex("request new Id mode: +true"), MatchesRegex("request new Id mode: +false")));
}

TEST_F(VgnControlTest, AReleaseOfTheIdKeyDoesNothing) {
  start();
  control->idKeyPressed(false);
  EXPECT_THAT(written(id_mode), IsEmpty());
}

TEST_F(VgnControlTest, APressDuringIdModeTurnsItOffAndStopsTheTimer) {
  start();
  control->idKeyPressed(true);
  tell(id_mode, "on");
  control->idKeyPressed(true);
  EXPECT_THAT(written(id_mode), ElementsAre("on", "off"));
  EXPECT_FALSE(idModeTimer().isActive());
}

TEST_F(VgnControlTest, AnythingButOnCountsAsOff) {
  start();
  tell(id_mode, "ON");
  control->idKeyPressed(true);
  EXPECT_THAT(written(id_mode), ElementsAre("on"));
}

TEST_F(VgnControlTest, IdModeEndsByItself) {
  start();
  control->idKeyPressed(true);
  expireIdMode();
  EXPECT_THAT(written(id_mode), ElementsAre("on", "off"));
  EXPECT_FALSE(idModeTimer().isActive());
}

TEST_F(VgnControlTest, PublishesTheSizeOfTheFirstOutput) {
  start();
  control->hdmiPropertiesChanged(0, "1920x1080p60");
  control->hdmiPropertiesChanged(0, "1921x1080@60");
  control->hdmiPropertiesChanged(0, "3840x2160@60");
  EXPECT_THAT(written(hdmi1_properties), ElementsAre("1920x1080", "961x540", "1920x1080"));
}

TEST_F(VgnControlTest, LogsWhatItHearsOfAnOutput) {
  start();
  control->hdmiPropertiesChanged(1, "3840x2160@60");
  EXPECT_THAT(qt_log.lines(QtDebugMsg), Contains("HDMI out 1 properties changed: 3840x2160@60"));
  EXPECT_THAT(qt_log.lines(QtInfoMsg), Contains("Resolution matched 3840x2160"));
}

TEST_F(VgnControlTest, PublishesAnyOtherOutputAsTheSecond) {
  start();
  control->hdmiPropertiesChanged(1, "640x480@60");
  control->hdmiPropertiesChanged(7, "800x600@60");
  EXPECT_THAT(written(hdmi2_properties), ElementsAre("640x480", "800x600"));
}

TEST_F(VgnControlTest, PublishesADisconnectedOutputAsSuch) {
  start();
  control->hdmiPropertiesChanged(0, "disconnected");
  EXPECT_THAT(written(hdmi1_properties), ElementsAre("disconnected"));
  EXPECT_THAT(qt_log.lines(QtInfoMsg), Not(Contains(HasSubstr("Resolution matched"))));
}

TEST_F(VgnControlTest, PublishesATextWithoutASizeAsEmpty) {
  start();
  control->hdmiPropertiesChanged(0, "Disconnected");
  EXPECT_THAT(written(hdmi1_properties), ElementsAre(""));
  EXPECT_THAT(qt_log.lines(QtInfoMsg), Contains(MatchesRegex("Resolution matched *")));
}

TEST_F(VgnControlTest, HearsOfHdmiPropertiesByNameFromAnotherThread) {
  start();
  std::thread([this] {
    EXPECT_TRUE(QMetaObject::invokeMethod(control.get(), "hdmiPropertiesChanged", Qt::QueuedConnection,
                                          Q_ARG(quint32, quint32{1}), Q_ARG(QString, QString("1280x720@60"))));
  }).join();
  EXPECT_TRUE(isWritten(hdmi2_properties, "1280x720"));
}

TEST_F(VgnControlTest, SpeaksInItsOwnCategory) {
  start();
  control->idKeyPressed(true);
  tell(design_status, "OK");
  tell(engine_state, "Running");
  control->hdmiPropertiesChanged(0, "640x480@60");
  EXPECT_THAT(qt_log.lines_in("zyl.vgn.control"),
              testing::IsSupersetOf({HasSubstr("request new Id mode:"), HasSubstr("design_status_updated"),
                                     HasSubstr("Runtime engine status:"), HasSubstr("HDMI out 0 properties changed:"),
                                     HasSubstr("Resolution matched"), HasSubstr("Set propety")}));
}

TEST_F(VgnControlTest, BlockedItKeepsTheScreensFromTheUiAndStartsNoThread) {
  startBlocked();
  EXPECT_THAT(written(ui_control), ElementsAre("0"));
  EXPECT_THAT(qt_log.lines(QtWarningMsg), Contains(HasSubstr("disable_vgn_ui_control detected. vgn_control video "
                                                             "functions was disabled permanently.")));
  const auto threads = control->findChildren<QThread*>();
  EXPECT_EQ(threads.size(), 2);
  for (const QThread* thread : threads) {
    EXPECT_FALSE(thread->isRunning());
  }
}

TEST_F(VgnControlTest, UnblockedItRunsTwoThreads) {
  start();
  const auto threads = control->findChildren<QThread*>();
  EXPECT_EQ(threads.size(), 2);
  for (const QThread* thread : threads) {
    EXPECT_TRUE(thread->isRunning());
  }
}

TEST_F(VgnControlTest, BlockedItFollowsNeitherDesignNorEngine) {
  startBlocked();
  written(ui_control);
  tell(design_status, "OK");
  tell(engine_state, "Stopped");
  tell(engine_state, "Running");
  EXPECT_THAT(designStatuses, IsEmpty());
  control->setProperty(dev_options, "end");
  EXPECT_TRUE(service.hears({"set", dev_options, "end"}));
  EXPECT_THAT(service.requests(), ElementsAre(request_t{"set", dev_options, "end"}));
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(VgnControlTest, BlockedItStillServesIdModeValidFormatAndDevelopmentOptions) {
  startBlocked();
  control->idKeyPressed(true);
  EXPECT_THAT(written(id_mode), ElementsAre("on"));
  tell(valid_format, "true");
  EXPECT_THAT(validFormats, ElementsAre("true"));
  tell(dev_options, "quiet");
  EXPECT_TRUE(zyl::dev_options::contains("quiet"));
}

TEST(VgnControl, WithoutAPropertyServiceItIsIdleAndEnds) {
  VgnControl control("", nullptr);
  control.setProperty("/vgn_ui/vgn_ui_control", "1");
  EXPECT_TRUE(control.findChild<QThread*>()->isRunning());
}

}  // namespace
