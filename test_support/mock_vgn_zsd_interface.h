#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "control_lib/src/vgn_zsd_interface.h"
#include "test_support/journal.h"

namespace test_support {

/// An HDMI interface without a streamer device: it notes what it is asked, and the test says what is plugged in.
class mock_vgn_zsd_interface_t : public control_lib::vgn_zsd_interface_t {
 public:
  struct output_t {
    bool readable = true;
    bool connected = false;
    std::vector<uint8_t> edid;
    control_lib::video_size_t size;
    std::vector<control_lib::resource_slot_t> observers;
  };

  mock_vgn_zsd_interface_t(event_base* base, journal_t& notes)
      : vgn_zsd_interface_t(base, std::make_unique<vgn::system_t>(base, std::make_unique<vgn::device_t>(), false)),
        journal(notes) {}
  ~mock_vgn_zsd_interface_t() override { journal.note("hdmi", "gone"); }

  /// The outputs of the device, three at most.
  std::array<output_t, 3> outputs;
  int count = 2;
  bool is_in_use = true;

  /// The driver tells of an output.
  void raise(std::size_t index, uint32_t bits) {
    for (const auto& observer : outputs[index].observers) {
      observer(static_cast<uint32_t>(index), bits);
    }
  }

  void start() override { journal.note("hdmi", "start"); }
  void stop() override { journal.note("hdmi", "stop"); }
  bool active() const override { return is_in_use; }
  int output_count() const override { return count; }

  bool get_output_connection(int index, bool& connected) override {
    journal.note("hdmi", "get_connection", index);
    if (at(index).readable) {
      connected = at(index).connected;
    }
    return at(index).readable;
  }
  bool get_output_edid(int index, std::vector<uint8_t>& edid) override {
    journal.note("hdmi", "get_edid", index);
    edid = at(index).edid;
    return !edid.empty();
  }
  bool get_output_mode(int index, control_lib::video_size_t& size) const override {
    size = outputs[static_cast<std::size_t>(index)].size;
    return true;
  }
  int inject_input_id(int index) const override { return 100 + index; }

  bool enable_hdmi_output(int index, bool enable, bool force) override {
    journal.note("hdmi", "enable", index, enable ? "on" : "off", force ? "force" : "no-force");
    return true;
  }
  bool set_output_mode(int index, const edid_lib::vid_timing_t& timing) override {
    journal.note("hdmi", "set_mode", index, timing.h_active, timing.v_active, timing.pixel_clock_khz);
    at(index).size = {static_cast<int>(timing.h_active), static_cast<int>(timing.v_active)};
    return true;
  }
  bool set_output(int index, int input_id, bool muted, bool frozen) override {
    journal.note("hdmi", "set_output", index, input_id, muted ? "muted" : "sound", frozen ? "frozen" : "moving");
    return true;
  }
  bool set_output(int index, int input_id) override {
    journal.note("hdmi", "set_output", index, input_id);
    return true;
  }
  bool set_output_source(int index, int input_id, uint32_t hw_source) override {
    journal.note("hdmi", "set_source", index, input_id, hw_source);
    return true;
  }
  bool add_output_observer(int index, const control_lib::resource_slot_t& observer) override {
    journal.note("hdmi", "observe", index);
    at(index).observers.push_back(observer);
    return true;
  }

 protected:
  void post(std::function<void()> call) override { call(); }
  bool is_owner_thread() const override { return true; }

 private:
  output_t& at(int index) { return outputs[static_cast<std::size_t>(index)]; }

  journal_t& journal;
};

}  // namespace test_support
