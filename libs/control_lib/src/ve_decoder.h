#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "control_lib/src/ve_observer.h"
#include "zyl/sigc_timer.h"

namespace control_lib {

/// A stream that a decoder can play.
struct uri_t {
  std::string uri;
  int stream = 0;

  bool operator==(const uri_t&) const = default;
};

/// Writes the URI in double quotes, a colon and the stream: "rtsp://a/b":1
std::ostream& operator<<(std::ostream& out, const uri_t& uri);

/// Writes all of them with ", " between.
std::ostream& operator<<(std::ostream& out, const std::list<uri_t>& uris);

/// A client's claim on a decoder. Free when it has no URIs.
struct decoder_handle_t {
  ve_observer_t* observer = nullptr;
  std::vector<ve_observer_t*> observers;  // who hears its events, each once; `observer` among them
  int decoder = -1;                       // index in the status block
  int dpldr = 0;                          // kind asked for
  std::list<uri_t> uris;                  // what the client accepts, best first
  std::string key;
  int generation = 0;  // counts the openings, so that an event of an earlier one is not delivered

  /// Frees it. The generation stays.
  void release();
};

/// One hardware decoder: who wants it, what it plays, and how long it has not.
struct decoder_t {
  uri_t uri;              // configured now; empty when idle
  std::list<uri_t> uris;  // what all its handles accept
  std::list<int> handles;
  std::string key;
  int dpldr = 0;
  int instance = -1;
  int index = -1;

  int64_t stream_down_ms = 0;  // since when, 0 = not armed; likewise below
  int64_t decoder_down_ms = 0;
  bool stream_timed_out = false;
  bool decoder_timed_out = false;

  bool auto_restart = false;   // restart after a timeout, as the client wants
  int64_t restart_at_ms = 0;   // 0 = no restart is due
  unsigned restart_count = 0;  // since it last came up

  std::unique_ptr<zyl::sigc_timer_t> decrypt_timer;  // restarts it after decryption errors; made on first use

  /// Back to idle. The timer stays, and runs on if it was running.
  void reset();
};

/// What the last poll saw of a decoder, with what changed since the one before.
struct decoder_status_t {
  int32_t type = 0;
  int32_t instance = 0;

  bool stream_active = false;
  bool stream_changed = false;
  bool decoder_active = false;
  bool decoder_changed = false;
  bool config_pending = false;  // a configuration was taken, and no frame seen since

  uint32_t payload_count = 0;
  uint32_t rx_count = 0;
  uint32_t frame_count = 0;
  uint32_t decoded_count = 0;
  int32_t config_count = 0;

  uint32_t decrypt_err_count = 0;
  uint32_t prev_decrypt_err_count = 0;
  int64_t first_decrypt_ms = 0;  // of the errors that go on now, 0 = none
  int64_t last_decrypt_ms = 0;

  float rate = 0;  // frames a second
  uint32_t rate_count = 0;
  double rate_time = 0;  // seconds, 0 = none
};

}  // namespace control_lib
