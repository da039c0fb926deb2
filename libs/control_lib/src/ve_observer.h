#pragma once

namespace control_lib {

/// What the engine client tells about its connection.
enum ve_ipc_event_e : int {
  ve_ipc_up = 0,
  ve_ipc_down = 1,
};

/// What the engine client tells about a decoder.
enum ve_decoder_event_e : int {
  ve_stream_up = 2,
  ve_stream_down = 3,
  ve_stream_timeout = 4,
  ve_decoder_up = 5,
  ve_decoder_down = 6,
  ve_decoder_timeout = 7,
};

/// Hears what the engine client has to tell, on its event loop and outside its lock. Not owned by the client, and must
/// outlive it.
class ve_observer_t {
 public:
  ve_observer_t() = default;
  ve_observer_t(const ve_observer_t&) = default;
  ve_observer_t& operator=(const ve_observer_t&) = default;
  ve_observer_t(ve_observer_t&&) = default;
  ve_observer_t& operator=(ve_observer_t&&) = default;
  virtual ~ve_observer_t() = default;

  /// `event`: a `ve_ipc_event_e`.
  virtual void ipc_event(int /*event*/) {}

  /// `event`: a `ve_decoder_event_e`. Not called for a handle that was closed since.
  virtual void decoder_event(int /*handle*/, int /*event*/) {}
};

}  // namespace control_lib
