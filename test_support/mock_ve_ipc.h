#pragma once

#include <list>
#include <string>

#include "control_lib/src/ve_ipc.h"
#include "test_support/journal.h"

namespace test_support {

/// A video engine client that notes what it is asked and answers as told.
class mock_ve_ipc_t : public control_lib::ve_ipc_t {
 public:
  mock_ve_ipc_t(event_base* base, journal_t& notes) : ve_ipc_t(base), journal(notes) {}
  ~mock_ve_ipc_t() override { journal.note("engine", "gone"); }

  /// The answer of `ready`.
  bool is_ready = true;
  /// The answer of the next `open_decoder`, one more for each that follows; `instance_of` a handle is 10 more than it.
  int next_handle = 5;
  /// The answer of `configure_raw_out`.
  bool accepts = true;

  void open(bool as_simulated) override { journal.note("engine", "open", as_simulated ? "simulated" : "real"); }
  void close_all() override { journal.note("engine", "close_all"); }
  bool is_connected() override { return is_ready; }
  bool ready() override { return is_ready; }
  void add_ipc_observer(control_lib::ve_observer_t* /*obs*/) override { journal.note("engine", "observe"); }

  int open_decoder(int dpldr, const std::list<control_lib::uri_t>& uris, const std::string& key,
                   control_lib::ve_observer_t* /*obs*/) override {
    journal.note("engine", "open_decoder", dpldr, uris, "'" + key + "'");
    return next_handle < 0 ? -1 : next_handle++;
  }
  void close_decoder(int handle, bool /*unused*/) override { journal.note("engine", "close_decoder", handle); }
  int instance_of(int handle) override { return handle + 10; }

  void raw_out_configuration(int n, int* out_decoder, int* out_width, int* out_height) override {
    const raw_out_t& remembered = raw_outs[n];
    *out_decoder = remembered.decoder;
    *out_width = remembered.width;
    *out_height = remembered.height;
  }
  bool configure_raw_out(int n, int decoder, int width, int height, bool wait, bool force) override {
    journal.note("engine", "raw_out", n, decoder, width, height, wait ? "wait" : "no-wait",
                 force ? "force" : "no-force");
    raw_outs[n] = {decoder, width, height};
    return accepts;
  }

 private:
  struct raw_out_t {
    int decoder = -1;
    int width = -1;
    int height = -1;
  };

  journal_t& journal;
  raw_out_t raw_outs[2];
};

}  // namespace test_support
