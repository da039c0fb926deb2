#include "zyl/loop_owned.h"

#include <utility>
#include <vector>

namespace zyl {

void loop_owned_t::activate_on(event_base* base, std::unique_ptr<loop_owned_t> self) {
  self->trigger = make_event(base, 0, on_event, self.get());
  // From here on the loop may have destroyed it.
  event_active(self.release()->trigger.get(), 0, 0);
}

void loop_owned_t::repeat_on(event_base* base, const timeval& interval, std::unique_ptr<loop_owned_t> self) {
  self->trigger = make_event(base, EV_PERSIST, on_event, self.get());
  event_add(self.release()->trigger.get(), &interval);
}

void loop_owned_t::on_event(evutil_socket_t /*fd*/, short /*events*/, void* self) {
  std::unique_ptr<loop_owned_t> owned(static_cast<loop_owned_t*>(self));
  if (owned->run()) {
    owned.release();  // NOLINT(bugprone-unused-return-value): the loop keeps it
  }
}

int loop_owned_t::collect(const event_base* /*base*/, const event* candidate, void* collected) {
  if (event_get_callback(candidate) == on_event) {
    static_cast<std::vector<loop_owned_t*>*>(collected)->push_back(
        static_cast<loop_owned_t*>(event_get_callback_arg(candidate)));
  }
  return 0;
}

void loop_owned_t::drop_all(event_base* base) {
  std::vector<loop_owned_t*> waiting;
  do {
    waiting.clear();
    event_base_foreach_event(base, collect, &waiting);
    for (loop_owned_t* owned : waiting) {
      const std::unique_ptr<loop_owned_t> dropped(owned);
    }
  } while (!waiting.empty());
}

}  // namespace zyl
