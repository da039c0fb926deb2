#include "zyl/self_deleting_timer.h"

#include <algorithm>
#include <utility>

#include "zyl/loop_owned.h"
#include "zyl/timer_event.h"

namespace zyl {
namespace {

class repeater_t : public loop_owned_t {
 public:
  static void start(event_base* base, int32_t interval_ms,
                    std::unique_ptr<self_deleting_timer_t::callback_t> callback) {
    auto self = std::make_unique<repeater_t>();
    self->wanted = std::move(callback);
    // libevent does not repeat a timer without an interval.
    repeat_on(base, timeval_of(std::max(interval_ms, 1)), std::move(self));
  }

 private:
  bool run() override { return (*wanted)(); }

  std::unique_ptr<self_deleting_timer_t::callback_t> wanted;
};

class function_callback_t : public self_deleting_timer_t::callback_t {
 public:
  explicit function_callback_t(std::function<bool()> wanted) : function(std::move(wanted)) {}
  bool operator()() override { return function(); }

 private:
  std::function<bool()> function;
};

}  // namespace

void self_deleting_timer_t::start(event_base* base, int32_t interval_ms, std::unique_ptr<callback_t> callback) {
  repeater_t::start(base, interval_ms, std::move(callback));
}

void self_deleting_timer_t::start(event_base* base, int32_t interval_ms, std::function<bool()> callback) {
  start(base, interval_ms, std::unique_ptr<callback_t>(std::make_unique<function_callback_t>(std::move(callback))));
}

}  // namespace zyl
