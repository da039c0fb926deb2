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
/// A device that cannot be opened, or that goes, leaves the keys dead and the daemon alive.
class KeysHandler : public QObject {
  Q_OBJECT

 public:
  /// Opens the device at `input_path`, shares it with its other readers and sets how its keys repeat: after 400 ms,
  /// every 80 ms.
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
