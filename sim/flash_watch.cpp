#include "sim/flash_watch.h"

#include <algorithm>

namespace sim {
namespace {

constexpr int64_t longest_period_ms = 5000;
constexpr int64_t least_patience_ms = 1000;

uint32_t rounded(int64_t period_ms) { return static_cast<uint32_t>(std::max<int64_t>((period_ms + 5) / 10 * 10, 10)); }

}  // namespace

int64_t flash_watch_t::patience_ms() const { return std::max<int64_t>(2 * int64_t{period_ms}, least_patience_ms); }

bool flash_watch_t::set(uint32_t new_level, int64_t now_ms) {
  if (new_level == level) {
    return false;
  }
  if (period_ms != 0 && !steady_at_ms(now_ms)) {
    period_ms = 0;
    rise_ms.reset();
  }
  if (level == 0) {
    period_ms = rise_ms && now_ms - *rise_ms <= longest_period_ms ? rounded(now_ms - *rise_ms) : 0;
    rise_ms = now_ms;
  }
  level = new_level;
  lit_level = level != 0 ? level : lit_level;
  changed_ms = now_ms;
  return true;
}

light_t flash_watch_t::light(int64_t now_ms) const {
  return steady_at_ms(now_ms) ? light_t{lit_level, period_ms} : light_t{level, 0};
}

std::optional<int64_t> flash_watch_t::steady_at_ms(int64_t now_ms) const {
  const int64_t steady_ms = changed_ms + patience_ms();
  return period_ms != 0 && now_ms < steady_ms ? std::optional(steady_ms) : std::nullopt;
}

}  // namespace sim
