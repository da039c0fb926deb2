#include "app/vgn_streamer_proxy.h"

#include <unistd.h>

#include <QMetaObject>
#include <QString>
#include <utility>

#include "control_lib/src/property_monitor_engine.h"
#include "control_lib/src/ve_ipc.h"
#include "control_lib/src/vgn_zsd_interface_eb.h"
#include "edid_lib/edid.h"
#include "edid_lib/tarn_filter_resolution.h"
#include "edid_lib/timing_tables.h"
#include "zyl/log/module_logger.h"
#include "zyl/platform.h"
#include "zyl/post.h"

static auto& module_log = zyl::module_logger("streamerproxy");
#include "zyl/log/log_bind.h"

namespace vgn_control {
namespace {

// edid_lib, which this proxy uses, has no log of its own. The logger exists for its entry in the level file.
[[maybe_unused]] const auto& edid_log = zyl::module_logger("edid_tarn");

constexpr const char* disconnected_image = "/var/run/xk-graphics/disconnected_image";

// Connection and disconnection; the other events of an output come from what the proxy itself does to it.
constexpr uint32_t connection_bits = control_lib::output_connection_event | control_lib::output_disconnection_event;

int hdmi_outputs_of_model() {
  switch (zyl::platform_t::get().part()) {
    case 137:
      return 1;
    case 105:
    case 106:
      return 2;
    case 85:
    case 100:
      return 3;
    default:
      return 0;
  }
}

// The tables are made when they are first asked; the first display to be plugged in shall not wait for that.
void make_timing_tables() {
  edid_lib::established_timings();
  edid_lib::dmt_timings();
  edid_lib::cta_timings();
  edid_lib::hdmi_timings();
}

}  // namespace

vgn_streamer_proxy::deps_t vgn_streamer_proxy::deps_t::of_the_appliance() {
  return {
      [](event_base* base) { return std::make_unique<control_lib::property_monitor_engine_t>(base); },
      [](event_base* base) { return std::make_unique<control_lib::vgn_zsd_interface_eb_t>(base, 6); },
      [](event_base* base) { return std::make_unique<control_lib::ve_ipc_t>(base); },
  };
}

vgn_streamer_proxy::vgn_streamer_proxy(QObject* coordinator, deps_t factories, info_texts_t info_texts)
    : owner(coordinator), deps(std::move(factories)), info(std::move(info_texts)) {}

vgn_streamer_proxy::~vgn_streamer_proxy() = default;

std::string vgn_streamer_proxy::splash_path(int hdmi_index, const char* name) {
  return "/xk_splash/" + std::to_string(hdmi_index) + "/" + name;
}

void vgn_streamer_proxy::run() {
  log_info_s() << "vgn_streamer_proxy::run";
  property_monitor = deps.property_monitor(event_loop.base());
  for (int n = 0; n < splash_count; ++n) {
    property_monitor->monitor(splash_path(n, "ready"), this);
  }
  hdmi_interface = deps.hdmi_interface(event_loop.base());
  hdmi_interface->started().connect(sigc::mem_fun(*this, &vgn_streamer_proxy::on_vgn_start));
  ve_ipc = deps.ve_ipc(event_loop.base());
  ve_ipc->add_ipc_observer(this);
  apply_design_state();
  make_timing_tables();
  event_loop.run();

  stop_streamer();
  hdmi_interface.reset();
  ve_ipc.reset();
  property_monitor.reset();
}

void vgn_streamer_proxy::stop() { event_loop.stop(); }

void vgn_streamer_proxy::set_design_running() {
  log_info_s() << "vgn_streamer_proxy::set_design_running";
  if (!design_running.exchange(true)) {
    zyl::post(event_loop.base(), [this] { apply_design_state(); });
  }
}

void vgn_streamer_proxy::set_design_stopped() {
  log_info_s() << "vgn_streamer_proxy::set_design_stopped";
  if (design_running.exchange(false)) {
    zyl::post(event_loop.base(), [this] { apply_design_state(); });
  }
}

void vgn_streamer_proxy::apply_design_state() {
  const bool wanted = !design_running;
  const auto missed = std::exchange(missed_connection, {});
  if (wanted == streamer_started) {
    // A design came and went before the loop turned: nothing restarts, so nobody else looks at these again.
    for (int n = 0; n < splash_count; ++n) {
      if (missed[slot(n)]) {
        on_output_connection(n);
      }
    }
    return;
  }
  streamer_started = wanted;
  if (wanted) {
    start_streamer();
  } else {
    stop_streamer();
  }
}

void vgn_streamer_proxy::start_streamer() {
  stop_streamer();
  reset_splash_properties();
  announce_disconnected_image();
  hdmi_interface->start();
  ve_ipc->open(false);
}

void vgn_streamer_proxy::stop_streamer() {
  if (ve_ipc) {
    disconnect_xk_splash();
    ve_ipc->close_all();
  }
  if (hdmi_interface) {
    hdmi_interface->stop();
  }
}

void vgn_streamer_proxy::reset_splash_properties() {
  const int outputs = hdmi_outputs_of_model();
  for (int n = 0; n < outputs; ++n) {
    for (const char* name : {"graphic", "info", "mode", "uci"}) {
      set_splash_property(n, name, "");
    }
  }
}

void vgn_streamer_proxy::announce_disconnected_image() {
  image_path = access(disconnected_image, F_OK) == 0 ? disconnected_image : "";
  if (!image_path.empty()) {
    set_splash_property(0, "graphic", image_path);
    set_splash_property(0, "info", info[slot(0)]);
  }
}

void vgn_streamer_proxy::on_vgn_start() {
  const int outputs = hdmi_interface->output_count();
  log_info_s() << "vgn_streamer_proxy::on_vgn_start display_count=" << outputs;
  for (int n = 0; n < outputs; ++n) {
    hdmi_interface->add_output_observer(n, sigc::bind(sigc::mem_fun(*this, &vgn_streamer_proxy::on_output_event), n));
    hdmi_interface->enable_hdmi_output(n, true, false);
    on_output_connection(n);
  }
  disconnect_xk_splash();
}

void vgn_streamer_proxy::on_output_event(uint32_t /*id*/, uint32_t bits, int hdmi_index) {
  if ((bits & connection_bits) != 0) {
    on_output_connection(hdmi_index);
  }
}

void vgn_streamer_proxy::on_output_connection(int hdmi_index) {
  if (!hdmi_interface || hdmi_index >= splash_count) {
    return;
  }
  if (design_running) {
    missed_connection[slot(hdmi_index)] = true;
    return;
  }
  bool connected = false;
  hdmi_interface->get_output_connection(hdmi_index, connected);
  log_info_s() << "vgn_streamer_proxy::on_output_connection(hdmi_index=" << hdmi_index << ") display "
               << (connected ? "connected" : "disconnected");
  if (connected) {
    display_connected(hdmi_index);
  } else {
    disconnect_pnl8_splash(hdmi_index);
    tell_coordinator(hdmi_index, "disconnected");
  }
}

void vgn_streamer_proxy::display_connected(int hdmi_index) {
  std::vector<uint8_t> bytes;
  hdmi_interface->get_output_edid(hdmi_index, bytes);
  if (bytes.empty()) {
    log_error_s() << "vgn_streamer_proxy::on_output_connection empty edid";
    return;
  }
  edid_lib::edid_t edid(std::move(bytes));
  const auto modes = edid_lib::output_connection_filter().modes(edid);
  if (modes.empty()) {
    log_error_s() << "vgn_streamer_proxy::on_output_connection empty modes list";
    return;
  }
  set_preferred_mode(hdmi_index, modes);
  connect_xk_splash(hdmi_index);
}

void vgn_streamer_proxy::set_preferred_mode(int hdmi_index, const std::vector<edid_lib::vid_resolution_t>& modes) {
  const auto& preferred = modes.front();
  const std::string text = preferred.key();
  log_info_s() << "vgn_streamer_proxy::set_preferred_mode hdmi_index=" << hdmi_index << " mode=" << text;
  hdmi_interface->set_output_mode(hdmi_index, preferred.timing);
  tell_coordinator(hdmi_index, text);
}

void vgn_streamer_proxy::tell_coordinator(int hdmi_index, const std::string& text) {
  const bool invoked = QMetaObject::invokeMethod(owner, "hdmiPropertiesChanged", Qt::QueuedConnection,
                                                 Q_ARG(quint32, static_cast<quint32>(hdmi_index)),
                                                 Q_ARG(QString, QString::fromStdString(text)));
  if (!invoked) {
    zyl::log_base_s(module_log, spdlog::level::critical) << "Invocation of the hdmiPropertiesChanged failed";
  }
}

void vgn_streamer_proxy::on_property(control_lib::property_response_e kind, const std::string& path,
                                     const std::string& value) {
  if (kind == control_lib::property_response_e::no_prop_error) {
    return;
  }
  // The caller holds the property monitor's lock, which everything that follows from a ready signal wants.
  zyl::post(event_loop.base(), [this, path, value] { property_changed(path, value); });
}

}  // namespace vgn_control
