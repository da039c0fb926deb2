#pragma once

#include <gtest/gtest.h>

#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "app/vgn_streamer_proxy.h"
#include "edid_lib/vid_timing.h"
#include "test_support/journal.h"
#include "test_support/log_capture.h"
#include "test_support/mock_property_monitor.h"
#include "test_support/mock_ve_ipc.h"
#include "test_support/mock_vgn_zsd_interface.h"

/// Hears the modes of the outputs as the coordinator does: "0 1920x1080@60".
class StubCoordinator : public QObject {
  Q_OBJECT

 public:
  std::vector<std::string> heard;

 public Q_SLOTS:
  void hdmiPropertiesChanged(quint32 hdmi_index, QString properties) {
    heard.push_back(std::to_string(hdmi_index) + " " + properties.toStdString());
  }
};

/// The proxy between doubles, on the test's own thread: `run` takes steps, each of which runs on the proxy's loop when
/// everything that the one before has posted there is done.
class StreamerProxyTest : public testing::Test {
 protected:
  using step_t = std::function<void()>;
  using lines_t = std::vector<std::string>;

  static inline const std::string image = "/var/run/xk-graphics/disconnected_image";

  explicit StreamerProxyTest(vgn_control::vgn_streamer_proxy::info_texts_t info_texts = {});

  /// Runs the proxy through the steps and then ends it.
  void run(std::vector<step_t> steps);

  /// Runs it through the steps; somebody else ends it.
  void run_until_stopped(std::vector<step_t> steps);

  /// What the doubles were asked since the last call.
  lines_t take() { return journal.take(); }
  void forget() { journal.take(); }

  /// What the doubles of one name were asked since the last call.
  lines_t take(const std::string& who);

  /// What the coordinator has heard since the last call.
  lines_t coordinator_heard();

  void plug(std::size_t index, const edid_lib::vid_timing_t& timing);
  void plug_bytes(std::size_t index, std::vector<uint8_t> edid);
  void unplug(std::size_t index);
  void streamer_system_up() { hdmi->started().emit(); }
  void ready(int index);
  void property(control_lib::property_response_e kind, const std::string& path, const std::string& value) {
    proxy.on_property(kind, path, value);
  }

  /// The level of the line that is exactly `text`; off if none was said.
  spdlog::level::level_enum level_of(const std::string& text) const;

  static void set_model(const char* part_number);
  static void put_disconnected_image();
  static void remove_disconnected_image();

  test_support::log_capture_t log{"streamerproxy"};
  test_support::journal_t journal;
  StubCoordinator coordinator;
  test_support::mock_property_monitor_t* bus = nullptr;
  test_support::mock_vgn_zsd_interface_t* hdmi = nullptr;
  test_support::mock_ve_ipc_t* engine = nullptr;
  vgn_control::vgn_streamer_proxy proxy;

 private:
  void step(std::size_t index);

  event_base* base = nullptr;
  std::vector<step_t> script;
};

inline constexpr edid_lib::vid_timing_t timing_4k{594000, 3840, 4016, 4104, 4400, 2160, 2168, 2178, 2250, 5};
inline constexpr edid_lib::vid_timing_t timing_1080p{148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5};
