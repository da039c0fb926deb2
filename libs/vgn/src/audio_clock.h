#pragma once

#include <cstdint>

namespace vgn {

/// The numbers that regenerate an audio clock from a video clock, as the driver takes them.
struct audio_clock_t {
  uint32_t a;
  uint32_t cts;
  uint32_t q;

  bool operator==(const audio_clock_t&) const = default;
};

/// For a sample rate in hertz and a TMDS clock in kHz. Above 340000 kHz the link carries a quarter of the clock, so the
/// numbers are those of the quarter. A rate or clock too low to divide by gives zeros.
audio_clock_t audio_clock(uint32_t sample_rate_hz, uint32_t tmds_khz);

}  // namespace vgn
