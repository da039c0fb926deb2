#include <sstream>
#include <string>

#include "control_lib/src/ve_ipc.h"
#include "engine_lib/videng_messages.h"
#include "zyl/log/module_logger.h"

static auto& module_log = zyl::module_logger("eng_engine_ipc");
#include "zyl/log/log_bind.h"

namespace control_lib {
namespace {

std::string raw_out_name(int n) { return "zvid-raw-frame_inject_in_" + std::to_string(n); }

}  // namespace

std::optional<std::size_t> ve_ipc_t::find_raw_out(int n) const {
  for (std::size_t i = 0; m_videng_status && i < videng::raw_outs.count; ++i) {
    if (m_videng_status->name(videng::raw_outs, i) == raw_out_name(n)) {
      return i;
    }
  }
  return std::nullopt;
}

void ve_ipc_t::raw_out_configuration(int n, int* out_decoder, int* out_width, int* out_height) {
  const zyl::recursive_lock_t lock(mutex);
  const auto index = find_raw_out(n);
  const raw_out_t remembered = index ? raw_out[*index] : raw_out_t();
  *out_decoder = remembered.decoder;
  *out_width = remembered.width;
  *out_height = remembered.height;
}

void ve_ipc_t::send_raw_out_config(std::size_t index, const raw_out_t& wanted) {
  videng::raw_out_config_t message;
  message.raw_out = static_cast<uint32_t>(index);
  message.decoder = static_cast<uint32_t>(wanted.decoder);
  message.width = static_cast<uint32_t>(wanted.width);
  message.height = static_cast<uint32_t>(wanted.height);
  send(videng::raw_out_config_t::kind, message);
}

bool ve_ipc_t::configure_raw_out(int n, int decoder, int width, int height, bool wait, bool force) {
  const zyl::recursive_lock_t lock(mutex);
  if (!m_videng_status) {
    return false;
  }
  const auto index = find_raw_out(n);
  if (!index) {
    log_error_s() << "[ve_ipc_t::configure_raw_out] raw instance \"" << raw_out_name(n)
                  << "\" not found.  decoder:" << decoder;
    return false;
  }
  const raw_out_t wanted{decoder, width, height};
  if (!force && raw_out[*index] == wanted) {
    return true;
  }
  const videng::status_result_t result = m_videng_status->raw_out_config_result(*index);
  result.store(0);
  if (!simulated) {
    send_raw_out_config(*index, wanted);
  }
  raw_out[*index] = wanted;

  std::ostringstream line;
  line << "[ve_ipc_t::configure_raw_out] raw_out:" << *index << " decoder:" << decoder << " width:" << width
       << " height:" << height;
  if (wait && !simulated) {
    return wait_for_result(result, line);
  }
  log_info_s() << line.str();
  return true;
}

}  // namespace control_lib
