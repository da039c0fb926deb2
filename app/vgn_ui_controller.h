#pragma once

#include <QByteArray>
#include <QObject>
#include <cstdint>

namespace vgn_control {

/// Decides which screen the local user interface shows while no design has the outputs: the boot splash until there
/// was a good design, "disconnected" once when that is lost. Main thread.
class VgnUiController : public QObject {
  Q_OBJECT

 public:
  explicit VgnUiController(QObject* parent = nullptr) : QObject(parent) {}

 Q_SIGNALS:
  /// Asks that a property be set: the first output's screen, then the second's.
  void setProperty(const QByteArray& name, const QByteArray& value);

 public Q_SLOTS:
  /// `value`: the design's status; "OK" is a good design, anything else is none.
  void designStatusChanged(const QByteArray& value);

 private:
  /// What is known of designs.
  enum class State : int32_t { unknown = 0, design_up = 1, design_lost = 2 };

  void showOnAll(const QByteArray& screen);

  State state = State::unknown;
};

}  // namespace vgn_control
