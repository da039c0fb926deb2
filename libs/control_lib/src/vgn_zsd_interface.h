#pragma once

#include <sigc++/sigc++.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "control_lib/src/vgn_zsd_resources.h"
#include "edid_lib/vid_timing.h"
#include "vgn/src/system.h"
#include "zyl/sigc_timer.h"

struct event_base;

namespace control_lib {

/// A picture's size in pixels.
struct video_size_t {
  int width = 0;
  int height = 0;

  bool operator==(const video_size_t&) const = default;
};

/// The daemon's model of the device's video inputs and outputs: finds them when the streamer device appears, polls and
/// caches their state, tells observers what changed, and carries out what is asked of the outputs.
///
/// Thread: the owner's, on whose loop everything happens. Commands may come from other threads too: they are posted to
/// the owner, and give true. Everything else is for the owner alone. Indexes are places among the HDMI outputs; one
/// out of range gives false and changes nothing, and so does everything while the streamer device is absent. A slot
/// must not stop or destroy the interface.
class vgn_zsd_interface_t {
 public:
  /// What inputs are live on models that share scaler inputs between HDMI and USB through a mux. This one serves the
  /// models without a mux: it blocks nothing and does nothing.
  class mux_logic_t {
   public:
    mux_logic_t() = default;
    virtual ~mux_logic_t() = default;

    mux_logic_t(const mux_logic_t&) = delete;
    mux_logic_t& operator=(const mux_logic_t&) = delete;
    mux_logic_t(mux_logic_t&&) = delete;
    mux_logic_t& operator=(mux_logic_t&&) = delete;

    virtual int mode() const;
    virtual void set_mode(vgn_zsd_interface_t& interface, int mode);

    /// Whether the mux hides the HDMI input at this place.
    virtual bool is_input_blocked(int index) const;

    /// Called once the resources are known.
    virtual void init(vgn_zsd_interface_t& interface);

    virtual uint32_t hdmi_mask() const;
    virtual uint32_t usb_mask() const;
    virtual void reset(vgn_zsd_interface_t& interface);
  };

  virtual ~vgn_zsd_interface_t();

  vgn_zsd_interface_t(const vgn_zsd_interface_t&) = delete;
  vgn_zsd_interface_t& operator=(const vgn_zsd_interface_t&) = delete;
  vgn_zsd_interface_t(vgn_zsd_interface_t&&) = delete;
  vgn_zsd_interface_t& operator=(vgn_zsd_interface_t&&) = delete;

  /// Looks for the streamer device; `started` tells when it is in use. A command.
  virtual void start();

  /// Lets go of the streamer device and forgets its resources, their observers included. A command.
  virtual void stop();

  /// Raised each time the resources of a streamer device have become known. Connections to it survive `stop`.
  virtual sigc::signal<void>& started() { return started_signal; }

  /// Whether a streamer device is in use and its resources are known.
  virtual bool active() const { return is_active; }

  /// The HDMI outputs; -1 while the streamer device is absent.
  virtual int output_count() const;

  /// Asks the device whether a display is connected.
  virtual bool get_output_connection(int index, bool& connected);

  /// Reads the EDID of the connected display, and leaves a copy in "/tmp/cur_edid_out_<index>.bin" for people.
  virtual bool get_output_edid(int index, std::vector<uint8_t>& edid);

  /// The active size of the mode asked for; 0x0 before there was one.
  virtual bool get_output_mode(int index, video_size_t& size) const;

  /// The id of an inject input by its place among them; -1 if there is none.
  virtual int inject_input_id(int index) const;

  /// Turns an output on or off. Nothing happens if it is so already, but the first call and a forced one always act. An
  /// output that is turned off loses its source. A command.
  virtual bool enable_hdmi_output(int index, bool enable, bool force);

  /// Remembers the timing, and programs it if the output is enabled. A command.
  virtual bool set_output_mode(int index, const edid_lib::vid_timing_t& timing);

  /// Routes an input to an output, mutes and freezes it or not, and enables it. `input_id` is an input's id; -1 or an
  /// id that no input has routes none. What is so already is not sent again. A command.
  virtual bool set_output(int index, int input_id, bool muted, bool frozen);

  /// The same, leaving mute and freeze as they are. A command.
  virtual bool set_output(int index, int input_id);

  /// Sets the source of an output to an input at hardware source number `hw_source`, whatever it was before; -1 or an
  /// unknown input id removes its source. A command.
  virtual bool set_output_source(int index, int input_id, uint32_t hw_source);

  /// `observer` hears the events of an HDMI output until its streamer device goes or `stop`.
  virtual bool add_output_observer(int index, const resource_slot_t& observer);

  /// The same for an input of any kind, by its id.
  virtual bool add_input_observer(uint32_t id, const resource_slot_t& observer);

  /// The streamer device has been opened: learns its resources.
  void system_added(vgn::system_t& added);

  /// The streamer device has gone.
  void system_removed(vgn::system_t& removed);

  /// The driver told of a resource; `type` is a `vgn::link_event_e` or a number not known here.
  void link_changed(uint32_t id, uint32_t type);

  /// One round of looking for what changed. The interface does it once a second while it is active.
  void on_poll_event();

 protected:
  /// `loop_base` must outlive the interface. A null `mux` is the one of the models without a mux.
  vgn_zsd_interface_t(event_base* loop_base, std::unique_ptr<vgn::system_t> streamer,
                      std::unique_ptr<mux_logic_t> mux = nullptr);

  /// Runs `call` on the owner's thread, unless the interface has died by then. Any thread.
  virtual void post(std::function<void()> call) = 0;

  /// Any thread.
  virtual bool is_owner_thread() const = 0;

 private:
  using inputs_t = std::vector<vgn_input_t*>;
  using outputs_t = std::vector<vgn_output_t*>;
  using bits_t = uint32_t;

  // Discovery
  void add_input(uint32_t id);
  void add_output(uint32_t id);
  inputs_t* inputs_of_kind(uint32_t kind);
  void print_resources() const;
  void remove_all_sources();
  void release_resources();

  // Poll
  void init_input_poll_state(int64_t id, bits_t mask);
  void init_output_poll_state(int64_t id, bits_t mask);
  void poll_input(vgn_input_t& input);
  void poll_blocked_input(vgn_input_t& input);
  void poll_output(vgn_output_t& output);
  bits_t poll_input_hdcp(vgn_input_t& input);
  bits_t poll_input_connection(vgn_input_t& input);
  bits_t poll_audio_channels(vgn_input_t& input);
  bits_t poll_active_audio(vgn_input_t& input);
  bool read_input_connection(const vgn_input_t& input, bool& connected);
  void raise_input(vgn_input_t& input, bits_t bits, bool forced);
  static void raise_output(vgn_output_t& output, bits_t bits);

  // Commands
  vgn_input_t* find_input(uint32_t id) const;
  vgn_input_t* source_input(int input_id) const;
  vgn_output_t* find_output(uint32_t id) const;
  vgn_output_t* hdmi_output(int index) const;
  bool route(vgn_output_t& output, vgn_input_t* input);
  bool apply_mute(vgn_output_t& output, bool muted);
  bool apply_freeze(vgn_output_t& output, bool frozen);
  void note_connection(vgn_output_t& output);

  bool is_active = false;
  sigc::signal<void> started_signal;
  std::unique_ptr<mux_logic_t> mux_logic;
  std::unique_ptr<vgn::system_t> owned_system;
  vgn::system_t* system = nullptr;  // the owned one while its device is in use
  std::vector<std::unique_ptr<vgn_input_t>> inputs;
  std::vector<std::unique_ptr<vgn_output_t>> outputs;
  inputs_t hdmi_inputs;
  inputs_t decoder_inputs;
  inputs_t inject_inputs;
  inputs_t mediacast_inputs;
  inputs_t v4l2_inputs;
  outputs_t hdmi_outputs;
  outputs_t capture_outputs;  // by the number in their names; null where there is none
  outputs_t v4l2_outputs;     // as capture_outputs
  zyl::sigc_timer_t poll_timer;
};

}  // namespace control_lib
