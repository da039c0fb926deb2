#pragma once

#include <event2/event.h>
#include <sigc++/sigc++.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "lnx/src/udev_monitor.h"
#include "vgn/src/device.h"
#include "vgn/src/vgn_ioctl.h"
#include "zyl/event_ptr.h"

namespace vgn {

/// An input or output, as the driver describes it.
struct resource_t {
  std::string name = {};
  uint32_t kind = 0;       ///< `input_kind_e` or `output_kind_e`
  uint32_t hw_source = 0;  ///< source number of an input for routing
};

/// The states of the content protection of an input or output.
struct hdcp_status_t {
  hdcp_auth_e authentication = hdcp_auth_e::off;
  hdcp_enc_e encryption = hdcp_enc_e::off;
};

/// The streamer driver: finds its device, opens it, passes its events on and wraps each of its requests.
///
/// Each request gives true if the driver took it; after false, and while no device is open, its out-arguments are as
/// they were. A failure is an error in the log, but for the states that are polled. Thread of the loop, construction
/// and destruction included.
class system_t {
 public:
  /// With `use_udev` the device is looked for by udev; without, `device_added` and `device_removed` tell of it. `base`
  /// must outlive the system.
  explicit system_t(event_base* base, std::unique_ptr<device_t> device = std::make_unique<device_t>(),
                    bool use_udev = true);
  virtual ~system_t();

  system_t(const system_t&) = delete;
  system_t& operator=(const system_t&) = delete;
  system_t(system_t&&) = delete;
  system_t& operator=(system_t&&) = delete;

  /// Opens the device if it is there, and from now on whenever it comes. Nothing happens if it has been started.
  void start();

  /// Closes the device, without a signal. What udev tells from now on is remembered for the next start.
  void stop();

  /// A device came: the first whose sysname begins "vgnsys-" is the streamer device, all others are ignored until it
  /// goes. It is tried again if it could not be opened before.
  void device_added(const lnx::udev_device_t& device);

  /// A device went. If it was the streamer device, another one that udev knows takes its place.
  void device_removed(const lnx::udev_device_t& device);

  /// The node of the streamer device; empty while there is none.
  const std::string& node() const { return device_node; }

  /// The device was opened; carries its node. A slot must not destroy the system.
  sigc::signal<void, const std::string&> added;

  /// The device has gone and is closed; carries its node. A slot must not destroy the system.
  sigc::signal<void, const std::string&> removed;

  /// The driver told of a resource: its id and a `link_event_e`, or a number not known here. A slot must not destroy
  /// the system, but may stop it.
  sigc::signal<void, uint32_t, uint32_t> link_changed;

  /// The ids of all inputs and of all outputs. False also if the driver claims more than 4096 of either.
  bool get_resources(std::vector<uint32_t>& input_ids, std::vector<uint32_t>& output_ids);

  bool get_input(uint32_t input_id, resource_t& resource);
  bool get_output(uint32_t output_id, resource_t& resource);

  /// The EDID of the display at an output, as it is; empty if there is none. False also if the driver claims more than
  /// the 256 blocks that an EDID can have.
  bool get_edid(uint32_t output_id, std::vector<uint8_t>& edid);

  bool set_timing(uint32_t output_id, const timing_t& timing);

  /// `tmds_khz` is the pixel clock of the output's timing. See `audio_clock`.
  bool set_audio_clock(uint32_t output_id, uint32_t sample_rate_hz, uint32_t tmds_khz);

  /// Of an input or an output.
  bool get_hdcp_status(uint32_t id, hdcp_status_t& status);

  bool set_output_source(uint32_t output_id, uint32_t input_id, uint32_t hw_source);
  bool remove_output_source(uint32_t output_id, uint32_t input_id, uint32_t hw_source);

  /// The same for a route that may not be there: that the driver refuses is no error in the log.
  bool clear_output_source(uint32_t output_id, uint32_t input_id, uint32_t hw_source);

  bool get_input_connected(uint32_t input_id, bool& connected);
  bool get_output_connected(uint32_t output_id, bool& connected);
  bool get_audio_channels(uint32_t input_id, uint32_t& channels);
  bool get_active_audio(uint32_t input_id, uint32_t& active_audio);
  bool set_output_mute(uint32_t output_id, bool muted);
  bool set_output_freeze(uint32_t output_id, bool frozen);
  bool set_hdmi_mux_input_mode(uint32_t mode);

 private:
  static void on_readable(evutil_socket_t fd, short events, void* self);
  void take_other_than(const std::string& gone_name);
  void attach();
  void detach();
  bool attached() const { return read_event != nullptr; }
  void read_events();

  int call(uint32_t request, void* record);
  bool request(const char* name, uint32_t number, void* record);
  bool quiet_request(const char* name, uint32_t number, void* record);
  bool read_resource(const char* name, uint32_t number, uint32_t id, resource_t& resource);
  bool read_polled_value(const char* name, uint32_t number, uint32_t id, uint32_t& value);

  event_base* base;
  std::unique_ptr<device_t> device;
  std::string device_name;  // sysname of the streamer device, by which udev tells of its end
  std::string device_node;
  bool started = false;
  zyl::event_ptr_t read_event;
  std::unique_ptr<lnx::udev_monitor_t> monitor;
};

}  // namespace vgn
