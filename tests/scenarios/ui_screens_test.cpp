#include <string>

#include "tests/scenarios/front_panel_scenario.h"

namespace scenarios {
namespace {

/// What the local user interface is told to show while no design has the screens.
class UiScreens : public FrontPanelScenario {
 protected:
  void expect_screens(const std::string& screen) {
    expect_property("/vgn_ui/hdmi1_current_screen", screen);
    expect_property("/vgn_ui/hdmi2_current_screen", screen);
  }

  /// Somebody else's words: they stay there until the daemon writes.
  void mark_screens() {
    remote().set("/vgn_ui/hdmi1_current_screen", mark);
    remote().set("/vgn_ui/hdmi2_current_screen", mark);
  }

  void expect_marks() {
    EXPECT_EQ(remote().value("/vgn_ui/hdmi1_current_screen"), mark);
    EXPECT_EQ(remote().value("/vgn_ui/hdmi2_current_screen"), mark);
  }

  const std::string mark = "mark";
};

TEST_F(UiScreens, ShowTheBootSplashAgainAtEachStatusBeforeTheFirstGoodDesign) {
  start_with_keys();
  expect_screens("boot_splash_screen");
  for (const char* status : {"Loading", "Failed"}) {
    mark_screens();
    set_design_status(status);
    expect_screens("boot_splash_screen");
  }
}

TEST_F(UiScreens, ShowThatTheDesignIsLostWhenAGoodOneGoes) {
  start_with_keys();
  set_design_status("OK");
  set_design_status("Failed");
  expect_screens("disconnected");
}

TEST_F(UiScreens, AreNotTouchedByAGoodDesign) {
  start_with_keys();
  expect_screens("boot_splash_screen");
  mark_screens();
  set_design_status("OK");
  set_design_status("OK");
  let_engine_run();
  expect_marks();
}

TEST_F(UiScreens, AreToldOnceThatTheDesignIsLost) {
  start_with_keys();
  set_design_status("OK");
  set_design_status("Failed");
  expect_screens("disconnected");
  mark_screens();
  set_design_status("Failed");
  set_design_status("Loading");
  set_design_status("OK");
  let_engine_run();
  expect_marks();
  remote().design("Stopped");
  expect_screens("disconnected");
}

}  // namespace
}  // namespace scenarios
