#pragma once

#include <QByteArray>
#include <QObject>
#include <memory>

class PropertyMonitor;

/// How far a firmware update is, from the properties below "/sys/fw_status/", on a connection of its own. Needs an
/// event loop; its thread only.
class FirmwareMonitor : public QObject {
  Q_OBJECT

 public:
  /// In brackets the text of the property "state".
  enum State {
    Idle = 0,          ///< "idle"; any other text and none
    Initializing = 1,  ///< "initializing"
    FwWrite = 2,       ///< "fw_write"
    FpgaWrite = 3,     ///< "fpga_write"
    Complete = 4,      ///< "complete"
    Error = 5,         ///< "error"
  };
  Q_ENUM(State)

  explicit FirmwareMonitor(QObject* parent = nullptr);
  ~FirmwareMonitor() override;

  State state() const;

  /// The number in the property "progress"; 0 when that is empty or no number.
  int progress() const;

 Q_SIGNALS:
  /// The service told the state or the progress, a new value or the same. A slot must not destroy the monitor;
  /// `deleteLater` may be called.
  void changed();

 private:
  Q_SLOT void propertyChanged(const QByteArray& name, const QByteArray& value);

  std::unique_ptr<PropertyMonitor> monitor;
};
