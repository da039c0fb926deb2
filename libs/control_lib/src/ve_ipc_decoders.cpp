#include <algorithm>
#include <sstream>
#include <string>
#include <utility>

#include "control_lib/src/ve_decoder_rules.h"
#include "control_lib/src/ve_ipc.h"
#include "engine_lib/videng_messages.h"
#include "zyl/clock.h"
#include "zyl/log/module_logger.h"

static auto& module_log = zyl::module_logger("eng_engine_ipc");
#include "zyl/log/log_bind.h"

namespace control_lib {
namespace {

/// The only length of a decryption key that the engine takes.
constexpr std::size_t key_size = 30;

/// How log lines name a decoder.
std::string kind_and_instance(const decoder_t& decoder) {
  return videng::depayloader_word(decoder.dpldr) + (":" + std::to_string(decoder.instance));
}

bool share_a_uri(const std::list<uri_t>& some, const std::list<uri_t>& others) {
  return std::any_of(some.begin(), some.end(), [&](const uri_t& one) {
    return std::any_of(others.begin(), others.end(), [&](const uri_t& other) { return one.uri == other.uri; });
  });
}

void add_once(std::vector<ve_observer_t*>& observers, ve_observer_t* obs) {
  if (obs != nullptr && std::find(observers.begin(), observers.end(), obs) == observers.end()) {
    observers.push_back(obs);
  }
}

}  // namespace

void ve_ipc_t::add_decoder_observer(int handle, ve_observer_t* obs) {
  const zyl::recursive_lock_t lock(mutex);
  if (is_handle(handle)) {
    add_once(handles[static_cast<std::size_t>(handle)].observers, obs);
  }
}

int ve_ipc_t::open_decoder(int dpldr, const std::list<uri_t>& uris, const std::string& key, ve_observer_t* obs) {
  log_info_s() << "[ve_ipc_t::open_decoder] dpldr=" << videng::depayloader_word(dpldr) << " uri(s)=" << uris
               << " key size " << key.size();
  const zyl::recursive_lock_t lock(mutex);
  if (!ready()) {
    log_info_s() << "[ve_ipc_t::open_decoder] dpldr=" << videng::depayloader_word(dpldr) << " uri(s)=" << uris
                 << " NOT CONNECTED";
    return -1;
  }
  if (uris.empty()) {
    log_info_s() << "[ve_ipc_t::open_decoder] empty uris.  nothing to do.";
    return -1;
  }
  const int found = find_decoder(dpldr, uris);
  if (found < 0) {
    log_info_s() << "[ve_ipc_t::open_decoder] get_decoder -1";
    return -1;
  }
  const auto index = static_cast<std::size_t>(found);
  decoder_t& decoder = decoders[index];
  decoder.dpldr = dpldr;
  decoder.instance = m_videng_status->decoder(index).instance().load();
  decoder.index = found;
  log_info_s() << "[ve_ipc_t::open_decoder] using decoder " << found << " " << kind_and_instance(decoder);

  decoder_handle_t claimed;
  claimed.observer = obs;
  claimed.uris = uris;
  claimed.key = key;
  return claim(decoder, std::move(claimed));
}

int ve_ipc_t::claim(decoder_t& decoder, decoder_handle_t claimed) {
  const int handle = find_free_decoder_handle();
  decoder_handle_t& place = handles[static_cast<std::size_t>(handle)];
  decoder.handles.push_back(handle);
  log_info_s() << "[ve_ipc_t::open_decoder] using handle " << handle;
  claimed.decoder = decoder.index;
  claimed.dpldr = decoder.dpldr;
  claimed.generation = place.generation + 1;
  place = std::move(claimed);

  intersect_uris(decoder);
  if (decoder.uris.empty()) {
    log_error_s() << "[ve_ipc_t::open_decoder] something went wrong.  empty url list";
    close_decoder(handle, false);
    return -1;
  }
  add_once(place.observers, place.observer);
  if (!configure_decoder(decoder, false)) {
    tell_where_it_stands(decoder, handle);
  }
  return handle;
}

void ve_ipc_t::tell_where_it_stands(const decoder_t& decoder, int handle) {
  if (decoder.stream_timed_out) {
    log_info_s() << "[ve_ipc_t::open_decoder] decoder already in timeout state, sending stream_timeout";
    post_handle_event(handle, ve_stream_timeout);
  } else if (dec_status[static_cast<std::size_t>(decoder.index)].decoded_count != 0) {
    log_info_s() << "[ve_ipc_t::open_decoder] decoder already up, sending decoder_up";
    post_handle_event(handle, ve_decoder_up);
  }
}

void ve_ipc_t::close_decoder(int handle, bool /*unused*/) {
  const zyl::recursive_lock_t lock(mutex);
  if (!is_handle(handle)) {
    return;
  }
  log_info_s() << "[ve_ipc_t::close_decoder] " << handle;
  const auto holds_it = [handle](const decoder_t& decoder) {
    return std::find(decoder.handles.begin(), decoder.handles.end(), handle) != decoder.handles.end();
  };
  const auto decoder = std::find_if(decoders.begin(), decoders.end(), holds_it);
  if (decoder == decoders.end()) {
    return;
  }
  decoder->handles.remove(handle);
  log_info_s() << "[ve_ipc_t::close_decoder] removed ref " << handle << " from decoder " << decoder->index;
  intersect_uris(*decoder);
  handles[static_cast<std::size_t>(handle)].release();
  configure_decoder(*decoder, false);
}

void ve_ipc_t::set_auto_restart(int handle, bool restart) {
  const zyl::recursive_lock_t lock(mutex);
  const int decoder = decoder_of(handle);
  if (decoder >= 0) {
    decoders[static_cast<std::size_t>(decoder)].auto_restart = restart;
  }
}

int ve_ipc_t::decoder_of(int handle) {
  const zyl::recursive_lock_t lock(mutex);
  return is_handle(handle) ? handles[static_cast<std::size_t>(handle)].decoder : -1;
}

int ve_ipc_t::instance_of(int handle) {
  const zyl::recursive_lock_t lock(mutex);
  const int decoder = decoder_of(handle);
  return decoder >= 0 ? decoders[static_cast<std::size_t>(decoder)].instance : -1;
}

bool ve_ipc_t::is_handle(int handle) const { return handle >= 0 && static_cast<std::size_t>(handle) < handles.size(); }

std::optional<std::size_t> ve_ipc_t::find_entry(int kind, int instance) const {
  for (std::size_t i = 0; i < videng::decoder_count; ++i) {
    const videng::decoder_entry_t entry = m_videng_status->decoder(i);
    if (entry.type().load() == kind && entry.instance().load() == instance) {
      return i;
    }
  }
  return std::nullopt;
}

int ve_ipc_t::find_sharable_decoder(int kind, const std::list<uri_t>& uris) const {
  int instance = 0;
  while (const auto index = find_entry(kind, instance)) {
    if (share_a_uri(uris, decoders[*index].uris)) {
      log_info_s() << "[ve_ipc_t::find_decoder] reusing decoder " << *index << " depayloader index " << instance;
      return static_cast<int>(*index);
    }
    ++instance;
  }
  return -1;
}

int ve_ipc_t::find_idle_decoder(int kind) const {
  int instance = 0;
  while (const auto index = find_entry(kind, instance)) {
    if (decoders[*index].uri.uri.empty()) {
      log_info_s() << "[ve_ipc_t::find_decoder] using idle decoder " << *index << " " << videng::depayloader_word(kind)
                   << ":" << instance;
      return static_cast<int>(*index);
    }
    ++instance;
  }
  log_error_s() << "[ve_ipc_t::find_decoder] not enough decoders";
  return -1;
}

int ve_ipc_t::find_decoder(int kind, const std::list<uri_t>& uris) const {
  if (!m_videng_status) {
    return -1;
  }
  const int shared = find_sharable_decoder(kind, uris);
  return shared >= 0 ? shared : find_idle_decoder(kind);
}

int ve_ipc_t::find_free_decoder_handle() {
  for (std::size_t i = 0; i < handles.size(); ++i) {
    if (handles[i].uris.empty()) {
      log_info_s() << "[ve_ipc_t::find_free_decoder_handle] using free decoder handle " << i;
      return static_cast<int>(i);
    }
  }
  handles.emplace_back();
  log_info_s() << "[ve_ipc_t::find_free_decoder_handle] adding new decoder handle " << handles.size() - 1;
  return static_cast<int>(handles.size() - 1);
}

void ve_ipc_t::intersect_uris(decoder_t& decoder) {
  std::vector<const decoder_handle_t*> claims;
  for (const int handle : decoder.handles) {
    claims.push_back(&handles[static_cast<std::size_t>(handle)]);
  }
  common_uris_t common = control_lib::intersect_uris(claims);
  for (int i = 0; i < common.refused_keys; ++i) {
    log_error_s() << "[ve_ipc_t::intersect_uris] handle opened with different key";
  }
  decoder.uris = std::move(common.uris);
  decoder.key = std::move(common.key);
}

bool ve_ipc_t::choose_uri(decoder_t& decoder, bool force) {
  if (decoder.uris.empty()) {
    decoder.uri = {};
    decoder.auto_restart = false;
    return true;
  }
  const uri_t& best = decoder.uris.front();
  if (decoder.uri == best && !force) {
    log_info_s() << "[ve_ipc_t::configure_decoder] decoder:" << decoder.index << " " << kind_and_instance(decoder)
                 << " already configured for best stream " << best;
    return false;
  }
  decoder.uri = best;
  return true;
}

void ve_ipc_t::send_decoder_config(std::size_t index, const std::string& uri, const std::string& key) {
  videng::decoder_config_t message;
  message.decoder = static_cast<uint8_t>(index);
  message.uri = uri;
  message.key = key;
  send(videng::decoder_config_t::kind, message);
}

bool ve_ipc_t::configure_decoder(decoder_t& decoder, bool force) {
  if (!m_videng_status || decoder.index < 0 || !choose_uri(decoder, force)) {
    return false;
  }
  const auto index = static_cast<std::size_t>(decoder.index);
  const videng::decoder_entry_t entry = m_videng_status->decoder(index);
  entry.config_result().store(0);
  dec_status[index].config_count = 0;

  std::ostringstream line;
  line << "[ve_ipc_t::configure_decoder] decoder:" << decoder.index << " " << kind_and_instance(decoder)
       << " URI=" << decoder.uri.uri << " key=" << (decoder.key.size() == key_size ? "yes" : "no");
  if (simulated) {
    log_info_s() << line.str();
  } else {
    send_decoder_config(index, decoder.uri.uri, decoder.key);
    static_cast<void>(wait_for_result(entry.config_result(), line));  // the poll tells what came of a failure
  }
  entry.clear_counters();
  restart_watches(decoder);
  return entry.config_result().load() == 1;
}

// Both timeouts run from now on, without an edge: a stream that never comes is noticed too.
void ve_ipc_t::restart_watches(decoder_t& decoder) {
  decoder_status_t& status = dec_status[static_cast<std::size_t>(decoder.index)];
  status.prev_decrypt_err_count = 0;
  status.last_decrypt_ms = 0;
  status.first_decrypt_ms = 0;
  if (decoder.decrypt_timer) {
    decoder.decrypt_timer->cancel();
  }
  const int64_t now = zyl::now_ms();
  decoder.stream_timed_out = false;
  decoder.stream_down_ms = now;
  decoder.decoder_timed_out = false;
  decoder.decoder_down_ms = now;
  decoder.restart_at_ms = 0;
  decoder.restart_count = 0;
}

}  // namespace control_lib
