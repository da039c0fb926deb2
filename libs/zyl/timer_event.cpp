#include "zyl/timer_event.h"

#include <sys/time.h>

#include <algorithm>

namespace zyl {

timeval timeval_of(int64_t milliseconds) { return {milliseconds / 1000, (milliseconds % 1000) * 1000}; }

void add_timeout(event* timeout, int64_t delay_ms) {
  event_del_noblock(timeout);  // on the loop's thread there is no callback to wait for
  if (delay_ms < 0) {
    event_add(timeout, nullptr);
    return;
  }
  const timeval delay = timeval_of(delay_ms);
  event_add(timeout, &delay);
}

int64_t remaining_ms(const event* timeout) {
  timeval due{};
  if (event_pending(timeout, EV_TIMEOUT, &due) == 0) {
    return 0;
  }
  timeval now{};
  gettimeofday(&now, nullptr);
  const int64_t left = int64_t{due.tv_sec - now.tv_sec} * 1000 + (due.tv_usec - now.tv_usec) / 1000;
  return std::max<int64_t>(left, 0);
}

}  // namespace zyl
