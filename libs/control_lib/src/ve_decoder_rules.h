#pragma once

#include <cstdint>
#include <list>
#include <string>
#include <vector>

#include "control_lib/src/ve_decoder.h"
#include "engine_lib/videng_status_block.h"

// The rules by which decoders are judged: values in, values out.

namespace control_lib {

/// Faults that a person on the device can switch on with files in /tmp.
struct simulated_faults_t {
  bool decrypt_err = false;  // /tmp/sim_decrypt_err: every poll counts one error
  bool decode_fail = false;  // /tmp/sim_decode_fail: the decoded count stands still
  bool rx_fail = false;      // /tmp/sim_rx_fail: the payload count stands still
};

simulated_faults_t read_simulated_faults();

/// Wall-clock seconds, as the frame rate is measured with.
double wall_seconds();

/// Takes a decoder's entry into what is known of it, with what changed. `wall_s`: `wall_seconds`.
void update_decoder_status(decoder_status_t& cache, const videng::decoder_entry_t& entry,
                           const simulated_faults_t& faults, double wall_s);

/// What the clients of one decoder have in common.
struct common_uris_t {
  std::list<uri_t> uris;
  std::string key;
  int refused_keys = 0;  // clients whose key differs from the first one
};

/// The URIs that all handles accept, compared by text, in the order and with the streams of the first. A list that has
/// become empty is filled again by the next handle. Null and free handles are not expected.
common_uris_t intersect_uris(const std::vector<const decoder_handle_t*>& handles);

/// Whether the timeouts watch the decoder: those of the streaming kinds, while configured.
bool is_watched(const decoder_t& decoder);

/// Follows the stream of a watched decoder. True when its timeout is reached, once.
bool stream_times_out(decoder_t& decoder, const decoder_status_t& status, int64_t now_ms);

enum class decoder_timeout_e { none, final, restarting };

/// Follows the frames of a watched decoder. Tells when its timeout is reached, once, and whether it is to be restarted;
/// the restart is then scheduled in `restart_at_ms`.
decoder_timeout_e decoder_times_out(decoder_t& decoder, const decoder_status_t& status, int64_t now_ms);

/// True when the scheduled restart is due, once.
bool restart_is_due(decoder_t& decoder, int64_t now_ms);

/// How long a decoder waits between a timeout and its restart.
inline constexpr int restart_delay_ms = 2000;

/// The next delay before a restart for decryption errors, 2050 to 5000 ms at random, so that decoders that fail
/// together do not restart together. One thread at a time.
int next_decrypt_delay_ms();

/// The delay that belongs to a value of the generator, 1 to 2^31 - 2.
int decrypt_delay_ms(uint32_t random);

}  // namespace control_lib
