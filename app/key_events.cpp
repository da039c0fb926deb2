#include "app/key_events.h"

#include <linux/input.h>

#include <cstring>

namespace vgn_control {

static_assert(sizeof(input_event) == KeyEventBatch::event_size, "time stamps of 64 bits");

const QMap<uint16_t, Qt::Key>& keyTable() {
  static const QMap<uint16_t, Qt::Key> table{{KEY_F1, Qt::Key_F1}, {KEY_F2, Qt::Key_F2}};
  return table;
}

std::optional<Qt::Key> keyOf(uint16_t code) {
  const auto key = keyTable().find(code);
  return key != keyTable().end() ? std::optional(*key) : std::nullopt;
}

std::span<std::byte> KeyEventBatch::room() { return std::span(buffer).subspan(accumulated); }

void KeyEventBatch::added(std::size_t count) { accumulated += count; }

std::vector<KeyEvent> KeyEventBatch::keys() const {
  std::vector<KeyEvent> keys;
  for (std::size_t offset = 0; offset + event_size <= accumulated; offset += event_size) {
    input_event event{};
    std::memcpy(&event, buffer.data() + offset, event_size);
    if (event.type == EV_KEY) {
      keys.push_back({event.code, event.value});
    }
  }
  return keys;
}

}  // namespace vgn_control
