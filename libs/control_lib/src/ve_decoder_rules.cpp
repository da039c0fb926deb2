#include "control_lib/src/ve_decoder_rules.h"

#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <random>

namespace control_lib {
namespace {

constexpr int64_t stream_timeout_ms = 3001;
constexpr int64_t decoder_timeout_ms = 3001;  // more than 3000
constexpr unsigned most_restarts = 10;

bool exists(const char* path) { return access(path, F_OK) == 0; }

bool has_uri(const std::list<uri_t>& uris, const std::string& text) {
  return std::any_of(uris.begin(), uris.end(), [&](const uri_t& entry) { return entry.uri == text; });
}

void update_stream(decoder_status_t& cache, uint32_t rx, uint32_t decoded) {
  // A dmabuf has no payloads: its frames are the stream.
  const bool active =
      cache.type == videng::depayloader_mediacast_dmabuf ? decoded != cache.decoded_count : rx != cache.rx_count;
  cache.stream_changed = active != cache.stream_active;
  cache.stream_active = active;
}

void update_decoder(decoder_status_t& cache, int32_t config_result, uint32_t decoded) {
  if (config_result > cache.config_count) {
    cache.config_pending = true;
  }
  // The first frame after a configuration is news even if the decoder had been up before it.
  if (decoded != 0 && cache.config_pending) {
    cache.decoder_active = true;
    cache.decoder_changed = true;
    cache.config_pending = false;
    return;
  }
  const bool active = cache.decoded_count < decoded;
  cache.decoder_changed = active != cache.decoder_active;
  cache.decoder_active = active;
}

void update_rate(decoder_status_t& cache, double wall_s) {
  if (cache.frame_count == 0) {
    cache.rate = 0;
    cache.rate_count = 0;
    cache.rate_time = 0;
    return;
  }
  if (cache.rate_time != 0 && cache.rate_count < cache.frame_count) {
    const auto rate = static_cast<float>((cache.frame_count - cache.rate_count) / (wall_s - cache.rate_time));
    cache.rate = cache.rate == 0 ? rate : 0.9F * cache.rate + 0.100000024F * rate;
  }
  cache.rate_count = cache.frame_count;
  cache.rate_time = wall_s;
}

void take_key(common_uris_t& common, const std::string& key) {
  if (key.empty()) {
    return;
  }
  if (common.key.empty() || common.key == key) {
    common.key = key;
  } else {
    ++common.refused_keys;
  }
}

}  // namespace

simulated_faults_t read_simulated_faults() {
  return {exists("/tmp/sim_decrypt_err"), exists("/tmp/sim_decode_fail"), exists("/tmp/sim_rx_fail")};
}

double wall_seconds() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  const int64_t microseconds = int64_t{now.tv_sec} * 1'000'000 + now.tv_nsec / 1000;
  return static_cast<double>(microseconds) / 1e6;
}

void update_decoder_status(decoder_status_t& cache, const videng::decoder_entry_t& entry,
                           const simulated_faults_t& faults, double wall_s) {
  cache.type = entry.type().load();
  cache.instance = entry.instance().load();
  if (faults.decrypt_err) {
    entry.decrypt_err_count().add(1);
  }
  const uint32_t decoded = faults.decode_fail ? cache.decoded_count : entry.decoded_count().load();
  const uint32_t rx = faults.rx_fail ? cache.rx_count : entry.rx_count().load();
  const int32_t config_result = entry.config_result().load();
  update_stream(cache, rx, decoded);
  update_decoder(cache, config_result, decoded);

  cache.payload_count = entry.payload_count().load();
  cache.rx_count = rx;
  cache.decrypt_err_count = entry.decrypt_err_count().load();
  cache.frame_count = entry.frame_count().load();
  cache.config_count = config_result;
  cache.decoded_count = decoded;
  update_rate(cache, wall_s);
}

common_uris_t intersect_uris(const std::vector<const decoder_handle_t*>& handles) {
  common_uris_t common;
  for (const decoder_handle_t* handle : handles) {
    if (common.uris.empty()) {
      common.uris = handle->uris;
    } else {
      common.uris.remove_if([handle](const uri_t& entry) { return !has_uri(handle->uris, entry.uri); });
    }
    take_key(common, handle->key);
  }
  return common;
}

bool is_watched(const decoder_t& decoder) {
  const bool streaming =
      decoder.dpldr == videng::depayloader_visengi || decoder.dpldr == videng::depayloader_mediacast_rtsp;
  return streaming && !decoder.uri.uri.empty();
}

bool stream_times_out(decoder_t& decoder, const decoder_status_t& status, int64_t now_ms) {
  if (status.stream_active) {
    decoder.stream_down_ms = 0;
    decoder.stream_timed_out = false;
    return false;
  }
  if (status.stream_changed) {
    decoder.stream_down_ms = now_ms;
  }
  if (decoder.stream_timed_out || decoder.stream_down_ms == 0 || now_ms - decoder.stream_down_ms < stream_timeout_ms) {
    return false;
  }
  decoder.stream_timed_out = true;
  return true;
}

decoder_timeout_e decoder_times_out(decoder_t& decoder, const decoder_status_t& status, int64_t now_ms) {
  if (status.decoder_active) {
    decoder.decoder_timed_out = false;
    decoder.decoder_down_ms = 0;
    return decoder_timeout_e::none;
  }
  if (status.decoder_changed) {
    decoder.decoder_down_ms = now_ms;
  }
  if (decoder.decoder_timed_out || decoder.decoder_down_ms == 0 ||
      now_ms - decoder.decoder_down_ms < decoder_timeout_ms) {
    return decoder_timeout_e::none;
  }
  decoder.decoder_timed_out = true;
  if (!decoder.auto_restart || decoder.restart_count >= most_restarts) {
    return decoder_timeout_e::final;
  }
  decoder.restart_at_ms = now_ms + restart_delay_ms;
  return decoder_timeout_e::restarting;
}

bool restart_is_due(decoder_t& decoder, int64_t now_ms) {
  if (!decoder.auto_restart || decoder.restart_at_ms == 0 || now_ms < decoder.restart_at_ms) {
    return false;
  }
  decoder.restart_at_ms = 0;
  return true;
}

int decrypt_delay_ms(uint32_t random) {
  constexpr int lowest = 2050;
  constexpr int end = 5001;
  return lowest + static_cast<int>((end - lowest) * (random / 2147483648.0));
}

int next_decrypt_delay_ms() {
  static std::minstd_rand generator(static_cast<uint32_t>(std::time(nullptr) % 2147483647));
  return decrypt_delay_ms(static_cast<uint32_t>(generator()));
}

}  // namespace control_lib
