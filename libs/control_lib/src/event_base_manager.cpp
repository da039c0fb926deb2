#include "control_lib/src/event_base_manager.h"

#include <cstdio>
#include <cstdlib>
#include <exception>

#include "control_lib/src/source_tag.h"
#include "zyl/event_loop.h"
#include "zyl/log/module_logger.h"
#include "zyl/post.h"

static auto& module_log = zyl::module_logger("ctl_event_base");
#include "zyl/log/log_bind.h"

namespace control_lib {

event_base_manager_t::event_base_manager_t(worker_manager_t& manager, const char* description)
    : worker_t(manager, description), base(zyl::new_event_base()) {}

event_base_manager_t::~event_base_manager_t() {
  // A thread that still runs ends the process here rather than in the destructor behind this one: it uses the base.
  if (joinable()) {
    std::terminate();
  }
  zyl::drop_posts(base);
  event_base_free(base);
}

void event_base_manager_t::run() {
  while (running) {
    take_result(event_base_loop(base, EVLOOP_NO_EXIT_ON_EMPTY));
  }
}

void event_base_manager_t::take_result(int result) {
  switch (result) {
    case 0:
      running = false;
      break;
    case 1:
      break;
    case -1:
      log_error_s() << source_tag("src/event_base_manager", __LINE__) << "Event base had some kind of issue";
      break;
    default:
      log_error_s() << source_tag("src/event_base_manager", __LINE__)
                    << "Event base exited in an unknown way: " << result;
      break;
  }
}

// A loop that is just being entered forgets the break, but not what is posted; that, in turn, may be left over when
// the loop ends, and must not end the next run.
void event_base_manager_t::stop() {
  running = false;
  event_base_loopbreak(base);
  zyl::post(base, [this] {
    if (!running) {
      event_base_loopbreak(base);
    }
  });
}

std::string event_base_manager_t::dump_events() const {
  char* text = nullptr;
  std::size_t size = 0;
  std::FILE* stream = open_memstream(&text, &size);
  if (stream == nullptr) {
    return "\n";
  }
  event_base_dump_events(base, stream);
  std::fclose(stream);  // NOLINT(cppcoreguidelines-owning-memory): as it came
  const std::string dump(text, size);
  std::free(text);  // NOLINT(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory): that is how it is handed out
  return dump + '\n';
}

status_entry_t event_base_manager_t::status() {
  const status_entry_t events{"events", [this] { return dump_events(); }};
  const status_entry_t kill{"kill", [this] {
                              stop();
                              return std::string();
                            }};
  return {"event_base_manager", {}, {{"event_base", {}, {events, kill}}}};
}

}  // namespace control_lib
