#include "zyl/threaded_event_loop.h"

namespace zyl {

threaded_event_loop_t::~threaded_event_loop_t() { threaded_event_loop_t::stop(); }

void threaded_event_loop_t::start() {
  const lock_t lock(mutex);
  end_thread();
  stopping = false;
  thread = std::thread([this] { run_until_stopped(); });
}

void threaded_event_loop_t::stop() {
  // Its own thread cannot wait for itself, nor for a lock whose holder waits for it.
  if (loop_thread == std::this_thread::get_id()) {
    ask_to_stop();
    return;
  }
  const lock_t lock(mutex);
  end_thread();
}

// A request that came when the loop had ended already ends the next run at once: then it goes round.
void threaded_event_loop_t::run_until_stopped() {
  loop_thread = std::this_thread::get_id();
  while (!stopping && try_run()) {
  }
  loop_thread = std::thread::id();
}

void threaded_event_loop_t::ask_to_stop() {
  stopping = true;
  event_loop_t::stop();
}

void threaded_event_loop_t::end_thread() {
  if (thread.joinable()) {
    ask_to_stop();
    thread.join();
  }
}

}  // namespace zyl
