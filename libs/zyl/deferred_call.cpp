#include "zyl/deferred_call.h"

#include "zyl/event_loop.h"

namespace zyl {

void deferred_call_t::post(event_loop_t& loop) { post(loop.base()); }

void deferred_call_t::post(event_base* base) { activate_on(base, std::unique_ptr<loop_owned_t>(this)); }

bool deferred_call_t::run() {
  (*this)();
  return false;
}

}  // namespace zyl
