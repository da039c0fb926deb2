#pragma once

#include <linux/input.h>

#include <cstdint>
#include <cstring>
#include <string>

namespace test_support {

/// One event of an evdev device, as its bytes.
inline std::string input_event_bytes(uint16_t type, uint16_t code, int32_t value) {
  input_event event{};
  event.input_event_sec = 1'700'000'000;
  event.input_event_usec = 123'456;
  event.type = type;
  event.code = code;
  event.value = value;
  std::string bytes(sizeof event, '\0');
  std::memcpy(bytes.data(), &event, sizeof event);
  return bytes;
}

/// A key event; `value` 0 is a release, 1 a press, 2 a repeat.
inline std::string key_bytes(uint16_t code, int32_t value) { return input_event_bytes(EV_KEY, code, value); }

/// What a device tells behind each change.
inline std::string report_bytes() { return input_event_bytes(EV_SYN, SYN_REPORT, 0); }

}  // namespace test_support
