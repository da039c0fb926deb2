#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <QString>
#include <memory>

#include "app/fd_container.h"
#include "app/key_events.h"

namespace vgn_control {

/// The keys of the front panel, read from an evdev device. Main thread, with an event loop.
///
/// A device that cannot be opened, or that goes, leaves the keys dead and the daemon alive. One that has come to its
/// end is kept: it is warned of whenever the loop finds it readable, and read again if it has more.
class KeysHandler : public QObject {
  Q_OBJECT

 public:
  /// Opens the device at `input_path`, which the system is given in the local 8-bit encoding. Does not keep the device
  /// to itself, so others may read it too, and sets how its keys repeat: after 400 ms, every 80 ms.
  explicit KeysHandler(QString input_path, QObject* parent = nullptr);
  ~KeysHandler() override;

 Q_SIGNALS:
  /// The id key goes down, stays down (a repeat is one more press) or comes up.
  void idKeyPressed(bool pressed);
  /// The same of the factory reset key.
  void factoryResetKeyPressed(bool pressed);

 private:
  /// What a read has brought.
  enum class Outcome { whole, more, nothing };

  void configureDevice() const;
  void readEvents();
  Outcome readInto(KeyEventBatch& batch);
  Outcome readFailed(int error, bool batch_is_empty);
  void stopReading();
  void processKey(const KeyEvent& event);
  void handleKey(uint16_t code, bool pressed);

  QString path;
  FdContainer input;
  /// Leaves the loop before the descriptor closes. Null while no device is open.
  std::unique_ptr<QSocketNotifier> notifier;
};

}  // namespace vgn_control
