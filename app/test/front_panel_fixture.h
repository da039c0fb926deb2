#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "app/led.h"
#include "app/test/vgn_control_fixture.h"
#include "test_support/fake_led_files.h"
#include "test_support/fake_udev.h"
#include "test_support/stub_platform.h"

/// The LED files of all models. A base, because the machine must be there before the threads of the doubles and after
/// those of the coordinator.
struct PanelFiles {
  PanelFiles() {
    files.make("/sys/class/leds/id_led/brightness");
    for (const std::string colour : {"blue:status", "green:id"}) {
      for (const char* attribute : {"trigger", "pattern", "repeat", "brightness"}) {
        files.make("/sys/class/leds/xk1-rgb-led:" + colour + "/" + attribute);
      }
    }
    for (const std::string attribute : {"out_en", "period", "value"}) {
      files.make("/proc/tarn/pwm-0/" + attribute);
    }
  }

  test_support::fake_udev_t machine;
  test_support::fake_led_files_t files{machine};
};

/// A coordinator before the front panels of all models, with keys that the test presses by writing to `keys`.
class FrontPanelTest : public PanelFiles, public VgnControlTest {
 protected:
  static constexpr const char* keys_path = "/tmp/keys";

  FrontPanelTest() {
    ::mkfifo(keys_path, 0600);
    keys = ::open(keys_path, O_RDWR | O_NONBLOCK | O_CLOEXEC);
  }

  void TearDown() override {
    VgnControlTest::TearDown();
    ::close(keys);
  }

  /// What was written to the LEDs by then is forgotten.
  void startModel(const char* part_number) {
    test_support::set_model(part_number);
    start(keys_path);
    files.take_writes();
  }

  vgn_control::LED& led() const { return *control->findChild<vgn_control::LED*>(); }

  /// Whether an LED that the daemon switches itself is off after this write, as `files` tells it: "0" over "255", by a
  /// flash that came in between, reads "055".
  static bool isDark(const std::string& write) { return write.find("=0") != std::string::npos; }

  int keys = -1;
};
