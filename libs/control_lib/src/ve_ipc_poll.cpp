#include "control_lib/src/ve_decoder_rules.h"
#include "control_lib/src/ve_ipc.h"
#include "zyl/clock.h"
#include "zyl/log/module_logger.h"

static auto& module_log = zyl::module_logger("eng_engine_ipc");
#include "zyl/log/log_bind.h"

namespace control_lib {
namespace {

/// Quiet time after which decryption errors are over.
constexpr int64_t decrypt_quiet_ms = 2000;

}  // namespace

void ve_ipc_t::poll_status() {
  const zyl::recursive_lock_t lock(mutex);
  if (!simulated && !socket.is_open()) {
    connect_engine();
  }
  if (!m_videng_status) {
    return;
  }
  update_statuses();
  const int64_t now = zyl::now_ms();
  for (std::size_t i = 0; i < decoders.size(); ++i) {
    raise_edges(i);
  }
  for (std::size_t i = 0; i < decoders.size(); ++i) {
    watch_decryption(i, now);
  }
  for (std::size_t i = 0; i < decoders.size(); ++i) {
    watch_stream(i, now);
  }
  for (std::size_t i = 0; i < decoders.size(); ++i) {
    watch_decoder(i, now);
  }
}

void ve_ipc_t::update_statuses() {
  const simulated_faults_t faults = read_simulated_faults();
  const double now_s = wall_seconds();
  for (std::size_t i = 0; i < dec_status.size(); ++i) {
    update_decoder_status(dec_status[i], m_videng_status->decoder(i), faults, now_s);
  }
}

void ve_ipc_t::raise_edges(std::size_t i) {
  const decoder_status_t& status = dec_status[i];
  decoder_t& decoder = decoders[i];
  if (status.stream_changed) {
    post_decoder_event(i, status.stream_active ? ve_stream_up : ve_stream_down);
  }
  if (!status.decoder_changed) {
    return;
  }
  if (!status.decoder_active) {
    post_decoder_event(i, ve_decoder_down);
    return;
  }
  if (decoder.restart_at_ms != 0) {
    log_error_s() << "Decoder " << i << " has recovered. Canceling restart.";
    decoder.restart_at_ms = 0;
  }
  decoder.restart_count = 0;
  post_decoder_event(i, ve_decoder_up);
}

void ve_ipc_t::watch_decryption(std::size_t i, int64_t now) {
  decoder_status_t& status = dec_status[i];
  decoder_t& decoder = decoders[i];
  if (!decoder.uri.uri.empty() && status.decrypt_err_count != status.prev_decrypt_err_count) {
    status.last_decrypt_ms = now;
    if (status.first_decrypt_ms == 0) {
      status.first_decrypt_ms = now;
    }
  }
  const bool timing = decoder.decrypt_timer != nullptr && decoder.decrypt_timer->running();
  if (status.first_decrypt_ms != 0 && !timing) {
    start_decrypt_timer(i);
  } else if (status.last_decrypt_ms != 0 && now - status.last_decrypt_ms > decrypt_quiet_ms) {
    if (timing) {
      decoder.decrypt_timer->cancel();
      log_trace_s() << "Decoder " << i << " decrypt error recovered. Canceling stream restart. decrypt_err_count="
                    << status.decrypt_err_count << " payload_count=" << status.payload_count;
    }
    status.last_decrypt_ms = 0;
    status.first_decrypt_ms = 0;
  }
  status.prev_decrypt_err_count = status.decrypt_err_count;
}

void ve_ipc_t::start_decrypt_timer(std::size_t i) {
  const int delay_ms = next_decrypt_delay_ms();
  log_trace_s() << "Decoder " << i << " decrypt error. Restarting stream in " << delay_ms
                << "ms. decrypt_err_count=" << dec_status[i].decrypt_err_count
                << " payload_count=" << dec_status[i].payload_count;
  auto& timer = decoders[i].decrypt_timer;
  if (!timer) {
    timer = std::make_unique<zyl::sigc_timer_t>(loop_base, delay_ms, true);
    // The restart looks again whether it is still wanted: the timer may be stopped while it expires.
    timer->expired.connect([this, i] { post([this, i] { decrypt_restart(i); }); });
  }
  timer->set_period(delay_ms);
  timer->arm();
}

void ve_ipc_t::decrypt_restart(std::size_t i) {
  const zyl::recursive_lock_t lock(mutex);
  const decoder_status_t& status = dec_status[i];
  if (status.first_decrypt_ms == 0) {
    return;
  }
  log_error_s() << "Restarting decoder " << i << " for decryption error recovery. Waited "
                << zyl::now_ms() - status.first_decrypt_ms << "ms. decrypt_err_count=" << status.decrypt_err_count
                << " payload_count=" << status.payload_count;
  configure_decoder(decoders[i], false);
}

void ve_ipc_t::watch_stream(std::size_t i, int64_t now) {
  if (is_watched(decoders[i]) && stream_times_out(decoders[i], dec_status[i], now)) {
    post_decoder_event(i, ve_stream_timeout);
  }
}

void ve_ipc_t::watch_decoder(std::size_t i, int64_t now) {
  decoder_t& decoder = decoders[i];
  if (!is_watched(decoder)) {
    return;
  }
  const decoder_timeout_e timeout = decoder_times_out(decoder, dec_status[i], now);
  if (timeout != decoder_timeout_e::none) {
    give_up_or_clear(i, timeout == decoder_timeout_e::restarting);
    post_decoder_event(i, ve_decoder_timeout);
  }
  if (restart_is_due(decoder, now)) {
    post([this, i] { restart_after_timeout(i); });
  }
}

void ve_ipc_t::give_up_or_clear(std::size_t i, bool restarting) {
  const uri_t& uri = decoders[i].uri;
  if (!restarting) {
    log_error_s() << "Decoder " << i << " has timed out (" << uri << ")";
    return;
  }
  if (!simulated) {
    send_decoder_config(i, "", "");
  }
  log_error_s() << "Decoder " << i << " has timed out (" << uri << ").  Decoder config cleared.  Restarting in "
                << restart_delay_ms << "ms.";
}

void ve_ipc_t::restart_after_timeout(std::size_t i) {
  const zyl::recursive_lock_t lock(mutex);
  if (!m_videng_status) {
    return;
  }
  decoder_t& decoder = decoders[i];
  const unsigned count = decoder.restart_count + 1;
  configure_decoder(decoder, true);
  decoder.restart_count = count;
}

void ve_ipc_t::post_decoder_event(std::size_t i, int event) {
  for (const int handle : decoders[i].handles) {
    post_handle_event(handle, event);
  }
}

void ve_ipc_t::post_handle_event(int handle, int event) {
  const decoder_handle_t& claimed = handles[static_cast<std::size_t>(handle)];
  if (claimed.observer != nullptr) {
    post([this, handle, generation = claimed.generation, event] { raise_handle_event(handle, generation, event); });
  }
}

void ve_ipc_t::raise_handle_event(int handle, int generation, int event) {
  std::vector<ve_observer_t*> listening;
  {
    const zyl::recursive_lock_t lock(mutex);
    const decoder_handle_t& claimed = handles[static_cast<std::size_t>(handle)];
    if (claimed.observer == nullptr || claimed.generation != generation) {
      return;
    }
    listening = claimed.observers;
  }
  for (ve_observer_t* observer : listening) {
    observer->decoder_event(handle, event);
  }
}

}  // namespace control_lib
