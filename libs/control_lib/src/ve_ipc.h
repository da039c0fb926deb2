#pragma once

#include <event2/event.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "control_lib/src/ve_decoder.h"
#include "control_lib/src/ve_observer.h"
#include "engine_lib/engine_ipc_socket.h"
#include "engine_lib/videng_status_mapping.h"
#include "zyl/mutex.h"
#include "zyl/sigc_timer.h"

namespace control_lib {

/// The daemon's link to the video engine process: connects to it and reconnects, shares its status block, polls that
/// every 200 ms and tells observers what changed, and owns the table of decoders: who asked for which stream, which
/// decoder serves it, and how one that stalls or cannot decrypt is restarted.
///
/// Three states: down (no socket; each poll tries to connect), requested (connected, no block yet), up (block mapped,
/// `ve_ipc_up` told). Failures are logged and leave decoders as they were; the poll then tells what came of it.
///
/// Construction, destruction, `open` and `close_all` belong to the loop's thread; the other operations may come from
/// any. All take one recursive mutex, which is held while the engine is waited for: up to 2 s. Observers are called
/// from posted closures, outside the mutex.
///
/// The operations are virtual so that a test of their caller can stand in for them.
class ve_ipc_t : public eipc::receiver_t {
 public:
  /// `base` must outlive this object. Nothing is connected yet. A negative interval: no timer, the owner polls.
  explicit ve_ipc_t(event_base* base, int poll_interval_ms = 200);
  ~ve_ipc_t() override;

  ve_ipc_t(const ve_ipc_t&) = delete;
  ve_ipc_t& operator=(const ve_ipc_t&) = delete;
  ve_ipc_t(ve_ipc_t&&) = delete;
  ve_ipc_t& operator=(ve_ipc_t&&) = delete;

  /// Closes everything and starts anew: connects to the engine, now or with a later poll. `as_simulated`: no engine;
  /// the block is plain memory with three decoders, and configurations are neither sent nor waited for.
  virtual void open(bool as_simulated);

  /// Disconnects and stops polling. All handles become free; their numbers stay taken. Simulated stays simulated.
  virtual void close_all();

  /// Simulated, or the socket is open.
  virtual bool is_connected();

  /// Connected, and the status block is there.
  virtual bool ready();

  /// `obs` hears of the connection from now on, for the rest of this object's life.
  virtual void add_ipc_observer(ve_observer_t* obs);

  /// `obs` hears the events of the handle too, until that is closed. Null and handles out of range are ignored.
  virtual void add_decoder_observer(int handle, ve_observer_t* obs);

  /// Claims a decoder of the kind `dpldr` (`videng::depayloader_e`) for the first of `uris` that everybody on it
  /// accepts: one that plays one of them already is shared, else an idle one is configured. `key`: the decryption key,
  /// empty for none. `obs`, which may be null, hears the handle's events; if nothing had to be configured it is told at
  /// once where the decoder stands. Returns the handle, or -1.
  virtual int open_decoder(int dpldr, const std::list<uri_t>& uris, const std::string& key, ve_observer_t* obs);

  /// Gives the claim back; the last one clears the decoder. A handle out of range or free is ignored. The flag has no
  /// meaning.
  virtual void close_decoder(int handle, bool unused);

  /// Whether the handle's decoder is restarted when it times out, up to ten times in a row. Falls when it is cleared.
  virtual void set_auto_restart(int handle, bool restart);

  /// Index in the status block of the handle's decoder, or -1.
  virtual int decoder_of(int handle);

  /// Number of the handle's decoder among those of its kind, or -1.
  virtual int instance_of(int handle);

  /// The last configuration of the raw output of display `n`; -1 in all three if there is none.
  virtual void raw_out_configuration(int n, int* out_decoder, int* out_width, int* out_height);

  /// Shows a decoder, by its instance within its kind or -1 for none, on the raw output of display `n`. What is set
  /// already is not sent again, also after a refusal, unless `force`. With `wait` returns whether the engine accepted,
  /// else whether there is such an output.
  virtual bool configure_raw_out(int n, int decoder, int width, int height, bool wait, bool force);

  /// One tick of the poll, which the timer runs on the loop; public so that tests can drive it with a clock of theirs.
  void poll_status();

  /// The bytes of the status block, null when there is none. For tests.
  uint8_t* status_block();

  void received(eipc::socket_t& sk, const std::string& from, const eipc::message_type& type,
                zyl::datastream_strio_t& data, const std::vector<lnx::cmsg_t>& cmsgs) override;

 private:
  struct event_deleter_t {
    void operator()(event* watched) const { event_free(watched); }
  };

  struct raw_out_t {
    int decoder = -1;
    int width = -1;
    int height = -1;

    bool operator==(const raw_out_t&) const = default;
  };

  // Connection
  void connect_engine() ZYL_REQUIRES(mutex);
  bool try_connect() ZYL_REQUIRES(mutex);
  void make_simulated_block() ZYL_REQUIRES(mutex);
  void reset() ZYL_REQUIRES(mutex);
  static void on_readable(evutil_socket_t fd, short events, void* self);
  void take_status_block(const std::vector<lnx::cmsg_t>& cmsgs) ZYL_REQUIRES(mutex);
  void log_output_names() ZYL_REQUIRES(mutex);
  void post(std::function<void()> call);
  void post_ipc_event(int event);
  void raise_ipc_event(int event);

  // Poll
  void update_statuses() ZYL_REQUIRES(mutex);
  void raise_edges(std::size_t i) ZYL_REQUIRES(mutex);
  void watch_decryption(std::size_t i, int64_t now) ZYL_REQUIRES(mutex);
  void start_decrypt_timer(std::size_t i) ZYL_REQUIRES(mutex);
  void watch_stream(std::size_t i, int64_t now) ZYL_REQUIRES(mutex);
  void watch_decoder(std::size_t i, int64_t now) ZYL_REQUIRES(mutex);
  void give_up_or_clear(std::size_t i, bool restarting) ZYL_REQUIRES(mutex);
  void decrypt_restart(std::size_t i);
  void restart_after_timeout(std::size_t i);
  void post_decoder_event(std::size_t i, int event) ZYL_REQUIRES(mutex);
  void post_handle_event(int handle, int event) ZYL_REQUIRES(mutex);
  void raise_handle_event(int handle, int generation, int event);

  // Decoders
  bool is_handle(int handle) const ZYL_REQUIRES(mutex);
  std::optional<std::size_t> find_entry(int kind, int instance) const ZYL_REQUIRES(mutex);
  int find_sharable_decoder(int kind, const std::list<uri_t>& uris) const ZYL_REQUIRES(mutex);
  int find_idle_decoder(int kind) const ZYL_REQUIRES(mutex);
  int find_decoder(int kind, const std::list<uri_t>& uris) const ZYL_REQUIRES(mutex);
  int find_free_decoder_handle() ZYL_REQUIRES(mutex);
  int claim(decoder_t& decoder, decoder_handle_t claimed) ZYL_REQUIRES(mutex);
  void intersect_uris(decoder_t& decoder) ZYL_REQUIRES(mutex);
  bool choose_uri(decoder_t& decoder, bool force) ZYL_REQUIRES(mutex);
  void send_decoder_config(std::size_t index, const std::string& uri, const std::string& key) ZYL_REQUIRES(mutex);
  bool configure_decoder(decoder_t& decoder, bool force) ZYL_REQUIRES(mutex);
  void restart_watches(decoder_t& decoder) ZYL_REQUIRES(mutex);
  void tell_where_it_stands(const decoder_t& decoder, int handle) ZYL_REQUIRES(mutex);

  // Outputs
  std::optional<std::size_t> find_raw_out(int n) const ZYL_REQUIRES(mutex);
  void send_raw_out_config(std::size_t index, const raw_out_t& wanted) ZYL_REQUIRES(mutex);

  void send(const eipc::message_type& type, const eipc::message_base_t& message) ZYL_REQUIRES(mutex);
  static bool wait_for_result(videng::status_result_t result, std::ostringstream& line);

  zyl::recursive_mutex_t mutex;
  event_base* loop_base;

  std::array<raw_out_t, videng::raw_outs.count> raw_out ZYL_GUARDED_BY(mutex);
  std::vector<decoder_handle_t> handles ZYL_GUARDED_BY(mutex);
  std::array<decoder_t, videng::decoder_count> decoders ZYL_GUARDED_BY(mutex);
  std::array<decoder_status_t, videng::decoder_count> dec_status ZYL_GUARDED_BY(mutex);
  std::vector<ve_observer_t*> ipc_observers ZYL_GUARDED_BY(mutex);

  eipc::socket_t socket;
  std::unique_ptr<event, event_deleter_t> read_event ZYL_GUARDED_BY(mutex);
  videng::status_mapping_t mapping ZYL_GUARDED_BY(mutex);
  std::vector<std::byte> simulated_block ZYL_GUARDED_BY(mutex);
  std::optional<videng::status_block_t> m_videng_status ZYL_GUARDED_BY(mutex);
  bool simulated ZYL_GUARDED_BY(mutex) = false;

  zyl::sigc_timer_t poll_timer;
  std::shared_ptr<const bool> alive;  // posted closures hold it weakly: they may outlast this object
};

}  // namespace control_lib
