#pragma once

#include <QMap>
#include <Qt>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace vgn_control {

/// A change of one key, as <linux/input.h> has it.
struct KeyEvent {
  /// KEY_... of <linux/input-event-codes.h>.
  uint16_t code = 0;
  /// 0 for a release, 2 for a repeat, 1 for a press.
  int32_t value = 0;

  /// A repeat is one more press.
  bool pressed() const { return value != 0; }
  bool autorepeat() const { return value == 2; }

  bool operator==(const KeyEvent&) const = default;
};

/// The keys of the front panel: by evdev code, what Qt calls them. Any thread.
const QMap<uint16_t, Qt::Key>& keyTable();

/// What Qt calls the key with this evdev code; none if the front panel has no such key. Any thread.
std::optional<Qt::Key> keyOf(uint16_t code);

/// The bytes of an evdev device, put together to whole events from reads that may be cut anywhere. One thread at a
/// time.
///
/// On the wire an event is a `struct input_event`: seconds and microseconds (8 bytes each), type (2), code (2), value
/// (4), all in the byte order of the machine.
class KeyEventBatch {
 public:
  static constexpr std::size_t event_size = 24;
  static constexpr std::size_t capacity = 32;

  /// Where the next bytes belong. Never empty while `isWhole` is false.
  std::span<std::byte> room();

  /// So many bytes have been put there; no more than there is room.
  void added(std::size_t count);

  bool isEmpty() const { return accumulated == 0; }

  /// Whether the bytes so far are whole events; also true without any.
  bool isWhole() const { return accumulated % event_size == 0; }

  /// The changes of keys among the whole events, oldest first. Events of other types are left out.
  std::vector<KeyEvent> keys() const;

 private:
  std::array<std::byte, capacity * event_size> buffer{};
  std::size_t accumulated = 0;
};

}  // namespace vgn_control
