// The splash half of the proxy: decoder, raw output, route, and what the splash provider is told.
#include "app/vgn_streamer_proxy.h"
#include "control_lib/src/property_monitor_eb.h"
#include "control_lib/src/ve_ipc.h"
#include "control_lib/src/vgn_zsd_interface.h"
#include "zyl/log/module_logger.h"

static auto& module_log = zyl::module_logger("streamerproxy");
#include "zyl/log/log_bind.h"

namespace vgn_control {
namespace {

// The kind of decoder that takes its pictures from another process of the appliance.
constexpr int mediacast_dmabuf = 4;

constexpr int no_decoder = -1;
constexpr int no_input = -1;

constexpr control_lib::video_size_t max_splash_size{1920, 1080};

std::string splash_uri(int hdmi_index) { return "videng-pnl8-dmabuf" + std::to_string(hdmi_index); }

}  // namespace

void vgn_streamer_proxy::ipc_event(int event) {
  if (event == control_lib::ve_ipc_up) {
    connect_splash_all();
  } else if (event == control_lib::ve_ipc_down) {
    disconnect_xk_splash();
  }
}

void vgn_streamer_proxy::connect_splash_all() {
  for (int n = 0; n < splash_count; ++n) {
    connect_xk_splash(n);
  }
}

void vgn_streamer_proxy::connect_xk_splash(int hdmi_index) {
  if (!ve_ipc->ready() || hdmi_index >= splash_count || !hdmi_interface->active() ||
      !splash_startup[slot(hdmi_index)]) {
    return;
  }
  log_info_s() << "vgn_streamer_proxy::connect_xk_splash(hdmi_index=" << hdmi_index << ") splash_startup=TRUE";
  if (!open_splash_decoder(hdmi_index)) {
    return;
  }
  route_splash(hdmi_index);
  if (image_path.empty()) {
    boot_splash_mode(hdmi_index);
  } else {
    graphic_splash_mode();
  }
}

bool vgn_streamer_proxy::open_splash_decoder(int hdmi_index) {
  int& decoder = splash_decoder[slot(hdmi_index)];
  if (decoder >= 0) {
    return true;
  }
  const std::string uri = splash_uri(hdmi_index);
  decoder = ve_ipc->open_decoder(mediacast_dmabuf, {{uri, 0}}, "", this);
  if (decoder < 0) {
    log_error_s() << "vgn_streamer_proxy::connect_xk_splash open_decoder failed " << uri;
    return false;
  }
  log_info_s() << "vgn_streamer_proxy::connect_xk_splash opened mediacast_dmabuf decoder " << uri;
  return true;
}

vgn_streamer_proxy::raw_out_t vgn_streamer_proxy::wanted_raw_out(int hdmi_index) {
  control_lib::video_size_t size;
  hdmi_interface->get_output_mode(hdmi_index, size);
  if (size.width > max_splash_size.width || size.height > max_splash_size.height) {
    size = max_splash_size;
  }
  return {ve_ipc->instance_of(splash_decoder[slot(hdmi_index)]), size.width, size.height};
}

void vgn_streamer_proxy::route_splash(int hdmi_index) {
  const raw_out_t wanted = wanted_raw_out(hdmi_index);
  raw_out_t present;
  ve_ipc->raw_out_configuration(hdmi_index, &present.decoder, &present.width, &present.height);
  if (present == wanted) {
    return;
  }
  log_info_s() << "vgn_streamer_proxy::connect_xk_splash reconfiguring raw out " << splash_uri(hdmi_index);
  hdmi_interface->set_output_source(hdmi_index, no_input, 0);
  ve_ipc->configure_raw_out(hdmi_index, wanted.decoder, wanted.width, wanted.height, true, false);
  hdmi_interface->set_output(hdmi_index, hdmi_interface->inject_input_id(hdmi_index), false, false);
}

void vgn_streamer_proxy::disconnect_pnl8_splash(int hdmi_index) {
  if (!ve_ipc || hdmi_index >= splash_count || splash_decoder[slot(hdmi_index)] < 0) {
    return;
  }
  log_info_s() << "vgn_streamer_proxy::disconnect_pnl8_splash hdmi_index=" << hdmi_index;
  ve_ipc->configure_raw_out(hdmi_index, no_decoder, 0, 0, false, false);
  ve_ipc->close_decoder(splash_decoder[slot(hdmi_index)], false);
  set_splash_property(hdmi_index, "mode", "disable");
  splash_decoder[slot(hdmi_index)] = no_decoder;
}

void vgn_streamer_proxy::disconnect_xk_splash() {
  log_info_s() << "vgn_streamer_proxy::disconnect_xk_splash (all)";
  for (int n = 0; n < splash_count; ++n) {
    disconnect_pnl8_splash(n);
  }
}

void vgn_streamer_proxy::boot_splash_mode(int hdmi_index) {
  set_splash_property(hdmi_index, "info", info[slot(hdmi_index)]);
  set_splash_property(hdmi_index, "mode", "boot_splash_screen");
}

void vgn_streamer_proxy::graphic_splash_mode() {
  set_splash_property(0, "info", info[slot(0)]);
  set_splash_property(0, "mode", "graphic");
}

void vgn_streamer_proxy::property_changed(const std::string& path, const std::string& value) {
  for (int n = 0; n < splash_count; ++n) {
    if (path == splash_path(n, "ready") && value == "1") {
      splash_startup[slot(n)] = true;
      disconnect_pnl8_splash(n);
      connect_xk_splash(n);
    }
  }
}

void vgn_streamer_proxy::set_splash_property(int hdmi_index, const char* name, const std::string& value) {
  property_monitor->set(splash_path(hdmi_index, name), value);
}

}  // namespace vgn_control
