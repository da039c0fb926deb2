#include "zyl/event_ptr.h"

#include <new>

#include "zyl/exceptions.h"

namespace zyl {

event_ptr_t make_event(event_base* base, short flags, event_callback_fn callback, void* argument) {
  // libevent would take the process's current base, of which there is none, and crash at the first use.
  if (base == nullptr) {
    throw exception_t("event without a base");
  }
  event_ptr_t made(event_new(base, -1, flags, callback, argument));
  if (!made) {
    throw std::bad_alloc();
  }
  return made;
}

}  // namespace zyl
