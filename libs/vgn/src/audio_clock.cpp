#include "vgn/src/audio_clock.h"

namespace vgn {
namespace {

// HDMI 2.0: above this character rate the TMDS clock runs at a quarter of it.
constexpr uint32_t direct_clock_limit_khz = 340'000;

uint64_t quotient_or_zero(uint64_t dividend, uint64_t divisor) { return divisor != 0 ? dividend / divisor : 0; }

}  // namespace

audio_clock_t audio_clock(uint32_t sample_rate_hz, uint32_t tmds_khz) {
  const uint64_t scale = tmds_khz > direct_clock_limit_khz ? 4 : 1;
  const uint64_t n = uint64_t{sample_rate_hz} * 128;
  const uint64_t a = n / 1000;
  const uint64_t t = tmds_khz / scale * 1000;
  const uint64_t cts = scale * quotient_or_zero(a * t, n);
  const uint64_t m = quotient_or_zero(n, a);
  const uint64_t q = quotient_or_zero(t, m);
  return {.a = static_cast<uint32_t>(a), .cts = static_cast<uint32_t>(cts), .q = static_cast<uint32_t>(q)};
}

}  // namespace vgn
