#pragma once

#include <gtest/gtest.h>

#include <QString>
#include <QTimer>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/vgn_control.h"
#include "test_support/fake_property_service.h"
#include "test_support/log_capture.h"
#include "test_support/qt_log_capture.h"

/// A coordinator on a bus where the test is the service. There is no streamer device and no video engine.
class VgnControlTest : public testing::Test {
 protected:
  using request_t = test_support::fake_property_service_t::request_t;

  static constexpr const char* engine_state = "/sys/runtimeengine/state";
  static constexpr const char* design_status = "/tarn/design/status";
  static constexpr const char* dev_options = "/tarn/design/dev_options";
  static constexpr const char* id_mode = "/tarn/mode/id";
  static constexpr const char* ui_control = "/vgn_ui/vgn_ui_control";
  static constexpr const char* hdmi1_properties = "/sys/hdmi1_properties";
  static constexpr const char* hdmi2_properties = "/sys/hdmi2_properties";
  static constexpr const char* valid_format = "/vgn_control/receiving_valid_format";
  static constexpr const char* hdmi1_screen = "/vgn_ui/hdmi1_current_screen";
  static constexpr const char* hdmi2_screen = "/vgn_ui/hdmi2_current_screen";

  VgnControlTest();
  void TearDown() override;

  void start(const QString& input = "");
  void startBlocked(const QString& input = "");

  /// The bus tells a new value, and the coordinator has heard it.
  void tell(const char* path, const char* value);

  /// What was written to a property so far, in order. A second property, written after, shows that nothing is under
  /// way.
  std::vector<std::string> written(const char* path);

  /// Waits until this is written.
  bool isWritten(const char* path, const char* value) const;

  QTimer& idModeTimer() const { return *control->findChild<QTimer*>(); }
  void expireIdMode() const { QMetaObject::invokeMethod(&idModeTimer(), "timeout"); }

  /// A line like "Set propety  "/a/path"  to value:  "0"" : Qt puts blanks and quotes around.
  static std::string setting(const std::string& path, const std::string& value);

  /// What the video side had been told of the design when a property was about to be written.
  std::vector<std::string> videoSideAtWriteOf(const char* path, const char* value, const char* state);

  // Made before the threads that log, and gone after them.
  test_support::log_capture_t log{"streamerproxy"};
  std::function<void(const std::string& text)> on_qt_line;
  test_support::qt_log_capture_t qt_log{[this](const auto& line) {
    if (line.type == QtInfoMsg && line.text != "StreamerController started" && on_qt_line) {
      on_qt_line(line.text);
    }
  }};
  test_support::fake_property_service_t service;
  std::unique_ptr<vgn_control::VgnControl> control;
  std::vector<std::string> designStatuses;
  std::vector<std::string> validFormats;

 private:
  /// The last property that the coordinator has reacted to.
  std::string last_heard;
};
