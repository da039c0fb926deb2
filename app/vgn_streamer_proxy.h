#pragma once

#include <sigc++/sigc++.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "control_lib/src/property_observer_eb.h"
#include "control_lib/src/ve_observer.h"
#include "zyl/event_loop.h"

class QObject;
struct event_base;

namespace control_lib {
class property_monitor_eb_t;
class ve_ipc_t;
class vgn_zsd_interface_t;
}  // namespace control_lib

namespace edid_lib {
struct vid_resolution_t;
}

namespace vgn_control {

/// Decides what the HDMI outputs show while no design runs: each connected display gets the best mode of its EDID and,
/// once the video engine and the splash provider are there, a splash picture.
///
/// `run` holds the streamer thread; everything happens on its event loop. Other threads may call `stop`,
/// `set_design_running` and `set_design_stopped`.
class vgn_streamer_proxy : public sigc::trackable,
                           public control_lib::ve_observer_t,
                           public control_lib::property_observer_eb_t {
 public:
  /// Makes what `run` needs, on the loop that it will live on.
  struct deps_t {
    std::function<std::unique_ptr<control_lib::property_monitor_eb_t>(event_base*)> property_monitor;
    std::function<std::unique_ptr<control_lib::vgn_zsd_interface_t>(event_base*)> hdmi_interface;
    std::function<std::unique_ptr<control_lib::ve_ipc_t>(event_base*)> ve_ipc;

    /// The real bus, streamer device and video engine.
    static deps_t of_the_appliance();
  };

  /// A text for the "/xk_splash/<n>/info" of each output.
  using info_texts_t = std::array<std::string, 2>;

  /// `coordinator` hears of the outputs' modes by a queued call of its slot "hdmiPropertiesChanged(quint32,QString)".
  /// It is not owned. No device, bus or engine socket is opened before `run`.
  explicit vgn_streamer_proxy(QObject* coordinator, deps_t factories = deps_t::of_the_appliance(),
                              info_texts_t info_texts = {});
  ~vgn_streamer_proxy() override;

  vgn_streamer_proxy(const vgn_streamer_proxy&) = delete;
  vgn_streamer_proxy& operator=(const vgn_streamer_proxy&) = delete;
  vgn_streamer_proxy(vgn_streamer_proxy&&) = delete;
  vgn_streamer_proxy& operator=(vgn_streamer_proxy&&) = delete;

  /// Connects to the property bus, the streamer device and the video engine, and serves them until `stop`; then lets go
  /// of all three. Once in a life.
  void run();

  /// Ends `run`, also one that has not begun. Any thread.
  void stop();

  /// A design runs: the outputs are its own. Takes effect on the loop, after the call has returned. Any thread.
  void set_design_running();

  /// No design runs any more: the outputs show the splash. Like `set_design_running`.
  void set_design_stopped();

  /// Engine came (0): opens the splash of each output. Engine went (1): closes them. Loop thread.
  void ipc_event(int event) override;

  /// Takes what the property monitor tells to the loop.
  void on_property(control_lib::property_response_e kind, const std::string& path, const std::string& value) override;

 private:
  static constexpr int splash_count = 2;

  struct raw_out_t {
    int decoder = -1;
    int width = -1;
    int height = -1;

    bool operator==(const raw_out_t&) const = default;
  };

  /// Place of an output in the arrays below.
  static std::size_t slot(int hdmi_index) { return static_cast<std::size_t>(hdmi_index); }

  /// The property of an output that the splash provider shares, as "/xk_splash/0/mode".
  static std::string splash_path(int hdmi_index, const char* name);

  void apply_design_state();
  void start_streamer();
  void stop_streamer();
  void reset_splash_properties();
  void announce_disconnected_image();

  void on_vgn_start();
  void on_output_event(uint32_t id, uint32_t bits, int hdmi_index);
  void on_output_connection(int hdmi_index);
  void display_connected(int hdmi_index);
  void set_preferred_mode(int hdmi_index, const std::vector<edid_lib::vid_resolution_t>& modes);
  void tell_coordinator(int hdmi_index, const std::string& text);

  void connect_splash_all();
  void connect_xk_splash(int hdmi_index);
  bool open_splash_decoder(int hdmi_index);
  raw_out_t wanted_raw_out(int hdmi_index);
  void route_splash(int hdmi_index);
  void disconnect_pnl8_splash(int hdmi_index);
  void disconnect_xk_splash();
  void boot_splash_mode(int hdmi_index);
  void graphic_splash_mode();
  void property_changed(const std::string& path, const std::string& value);
  void set_splash_property(int hdmi_index, const char* name, const std::string& value);

  QObject* owner;
  deps_t deps;
  zyl::event_loop_t event_loop;
  std::unique_ptr<control_lib::property_monitor_eb_t> property_monitor;
  std::unique_ptr<control_lib::ve_ipc_t> ve_ipc;
  std::unique_ptr<control_lib::vgn_zsd_interface_t> hdmi_interface;
  std::atomic<bool> design_running = false;
  /// What the loop has made of `design_running` so far.
  bool streamer_started = false;
  /// Outputs whose connection changed while `design_running` was set, until the loop has made something of that.
  std::array<bool, splash_count> missed_connection{};
  std::string image_path;
  info_texts_t info;
  std::array<int, 2> splash_decoder{-1, -1};
  std::array<bool, 2> splash_startup{};
};

}  // namespace vgn_control
