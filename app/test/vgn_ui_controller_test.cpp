#include "app/vgn_ui_controller.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QMetaMethod>
#include <string>
#include <utility>
#include <vector>

#include "app/logging.h"
#include "test_support/qt_log_capture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using vgn_control::VgnUiController;

class VgnUiControllerTest : public testing::Test {
 protected:
  VgnUiControllerTest() {
    QObject::connect(&controller, &VgnUiController::setProperty, &controller,
                     [this](const QByteArray& name, const QByteArray& value) {
                       asked.push_back(name.toStdString() + " = " + value.toStdString());
                     });
  }

  /// What is asked for at this status.
  std::vector<std::string> at(const char* status) {
    controller.designStatusChanged(status);
    return std::exchange(asked, {});
  }

  void reachDesignUp() { controller.designStatusChanged("OK"); }

  void reachDesignLost() {
    reachDesignUp();
    at("Stopped");
  }

  VgnUiController controller;
  std::vector<std::string> asked;
};

const auto shows_boot_splash = ElementsAre("/vgn_ui/hdmi1_current_screen = boot_splash_screen",
                                           "/vgn_ui/hdmi2_current_screen = boot_splash_screen");
const auto shows_disconnected =
    ElementsAre("/vgn_ui/hdmi1_current_screen = disconnected", "/vgn_ui/hdmi2_current_screen = disconnected");

TEST_F(VgnUiControllerTest, AnUnknownDesignThatIsGoodShowsNothing) { EXPECT_THAT(at("OK"), IsEmpty()); }

TEST_F(VgnUiControllerTest, AnUnknownDesignThatIsNotGoodShowsTheBootSplash) {
  EXPECT_THAT(at("Stopped"), shows_boot_splash);
}

TEST_F(VgnUiControllerTest, AnUnknownDesignShowsTheBootSplashAgainAtEachStatus) {
  at("Stopped");
  EXPECT_THAT(at("Stopped"), shows_boot_splash);
  EXPECT_THAT(at("Initializing"), shows_boot_splash);
  EXPECT_THAT(at(""), shows_boot_splash);
}

TEST_F(VgnUiControllerTest, ADesignThatStaysGoodShowsNothing) {
  reachDesignUp();
  EXPECT_THAT(at("OK"), IsEmpty());
}

TEST_F(VgnUiControllerTest, ADesignThatIsLostShowsDisconnected) {
  reachDesignUp();
  EXPECT_THAT(at("Stopped"), shows_disconnected);
}

TEST_F(VgnUiControllerTest, AnEmptyStatusLosesTheDesignToo) {
  reachDesignUp();
  EXPECT_THAT(at(""), shows_disconnected);
}

TEST_F(VgnUiControllerTest, ALostDesignShowsDisconnectedOnce) {
  reachDesignLost();
  EXPECT_THAT(at("Stopped"), IsEmpty());
  EXPECT_THAT(at("Fault"), IsEmpty());
}

TEST_F(VgnUiControllerTest, ALostDesignThatIsGoodAgainShowsNothing) {
  reachDesignLost();
  EXPECT_THAT(at("OK"), IsEmpty());
}

TEST_F(VgnUiControllerTest, ADesignLostAgainShowsDisconnectedAgain) {
  reachDesignLost();
  reachDesignUp();
  EXPECT_THAT(at("Stopped"), shows_disconnected);
}

TEST_F(VgnUiControllerTest, ADesignThatComesAfterTheBootSplashEndsIt) {
  at("Stopped");
  reachDesignUp();
  EXPECT_THAT(at("Stopped"), shows_disconnected);
}

TEST_F(VgnUiControllerTest, OnlyTheExactWordIsGood) {
  EXPECT_THAT(at("ok"), shows_boot_splash);
  EXPECT_THAT(at("OK "), shows_boot_splash);
  EXPECT_THAT(at("OKAY"), shows_boot_splash);
}

TEST_F(VgnUiControllerTest, AsksWithoutALogLine) {
  const test_support::qt_log_capture_t log;
  EXPECT_THAT(at("Stopped"), shows_boot_splash);
  reachDesignUp();
  EXPECT_THAT(at("Stopped"), shows_disconnected);
  EXPECT_THAT(log.categories(), IsEmpty());
}

TEST(VgnUiController, HasALogCategoryOfItsOwn) {
  EXPECT_STREQ(vgn_control::uiLog().categoryName(), "zyl.vgn.control.ui");
}

TEST(VgnUiController, ItsSignalComesBeforeItsSlot) {
  const QMetaObject& meta = VgnUiController::staticMetaObject;
  const int first = meta.methodOffset();
  ASSERT_EQ(meta.methodCount() - first, 2);
  EXPECT_EQ(meta.method(first).methodSignature(), "setProperty(QByteArray,QByteArray)");
  EXPECT_EQ(meta.method(first + 1).methodSignature(), "designStatusChanged(QByteArray)");
}

}  // namespace
