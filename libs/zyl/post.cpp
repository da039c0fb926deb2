#include "zyl/post.h"

#include <event2/event.h>

#include <memory>
#include <utility>
#include <vector>

namespace zyl {
namespace {

struct posted_call_t {
  event* trigger = nullptr;
  std::function<void()> call;

  ~posted_call_t() {
    if (trigger != nullptr) {
      event_free(trigger);
    }
  }
};

void run_posted_call(evutil_socket_t /*fd*/, short /*events*/, void* argument) {
  const std::unique_ptr<posted_call_t> posted(static_cast<posted_call_t*>(argument));
  posted->call();
}

int collect_posted_call(const event_base* /*base*/, const event* trigger, void* collected) {
  if (event_get_callback(trigger) == run_posted_call) {
    static_cast<std::vector<posted_call_t*>*>(collected)->push_back(
        static_cast<posted_call_t*>(event_get_callback_arg(trigger)));
  }
  return 0;
}

}  // namespace

void post(event_base* base, std::function<void()> call) {
  auto posted = std::make_unique<posted_call_t>();
  posted->call = std::move(call);
  posted->trigger = event_new(base, -1, 0, run_posted_call, posted.get());
  event_active(posted->trigger, 0, 0);
  posted.release();  // NOLINT(bugprone-unused-return-value): the loop owns it until it has run
}

void drop_posts(event_base* base) {
  std::vector<posted_call_t*> waiting;
  event_base_foreach_event(base, collect_posted_call, &waiting);
  for (posted_call_t* posted : waiting) {
    const std::unique_ptr<posted_call_t> dropped(posted);
  }
}

}  // namespace zyl
