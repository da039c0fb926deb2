#include "app/keys_handler.h"

#include <fcntl.h>
#include <linux/input.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

#include "app/logging.h"

namespace vgn_control {
namespace {

constexpr unsigned int repeat_delay_ms = 400;
constexpr unsigned int repeat_period_ms = 80;

}  // namespace

KeysHandler::KeysHandler(QString input_path, QObject* parent)
    : QObject(parent),
      path(std::move(input_path)),
      input(::open(path.toLocal8Bit().constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
  if (!input) {
    qCWarning(controlLog) << "Couldn't open the input device";
    return;
  }
  configureDevice();
  notifier = std::make_unique<QSocketNotifier>(input.get(), QSocketNotifier::Read, this);
  connect(notifier.get(), &QSocketNotifier::activated, this, &KeysHandler::readEvents);
}

KeysHandler::~KeysHandler() = default;

// Without these requests the keys work as well, so nobody looks at their results.
void KeysHandler::configureDevice() const {
  ::ioctl(input.get(), EVIOCGRAB, 0);
  const std::array<unsigned int, 2> repeat{repeat_delay_ms, repeat_period_ms};
  ::ioctl(input.get(), EVIOCSREP, repeat.data());
}

void KeysHandler::readEvents() {
  KeyEventBatch batch;
  Outcome outcome = Outcome::more;
  while (outcome == Outcome::more) {
    outcome = readInto(batch);
  }
  if (outcome == Outcome::nothing) {
    return;
  }
  for (const KeyEvent& event : batch.keys()) {
    processKey(event);
  }
}

KeysHandler::Outcome KeysHandler::readInto(KeyEventBatch& batch) {
  const auto room = batch.room();
  const ssize_t count = ::read(input.get(), room.data(), room.size());
  if (count < 0) {
    return readFailed(errno, batch.isEmpty());
  }
  if (count == 0) {
    qCWarning(controlLog) << "Got EOF from the input device";
    return Outcome::nothing;
  }
  batch.added(static_cast<std::size_t>(count));
  return batch.isWhole() ? Outcome::whole : Outcome::more;
}

KeysHandler::Outcome KeysHandler::readFailed(int error, bool batch_is_empty) {
  if (error == EINTR || error == EAGAIN) {
    qCDebug(controlLog) << "Error during the reading from the input device" << error;
    // Half an event has its rest on the way; a wake-up without data has nothing to wait for.
    return error == EAGAIN && batch_is_empty ? Outcome::nothing : Outcome::more;
  }
  qCCritical(controlLog) << "Couldn't read from the input device";
  if (error == ENODEV) {
    stopReading();
  }
  return Outcome::nothing;
}

// A device that has gone stays readable for ever.
void KeysHandler::stopReading() {
  notifier->disconnect(this);
  notifier.reset();
  input.reset();
}

void KeysHandler::processKey(const KeyEvent& event) {
  qCDebug(controlLog, "Processing key event: keycode=%3d, pressed=%d, autorepeat=%d", event.code,
          static_cast<int>(event.pressed()), static_cast<int>(event.autorepeat()));
  handleKey(event.code, event.pressed());
}

void KeysHandler::handleKey(uint16_t code, bool pressed) {
  const auto key = keyOf(code);
  if (!key) {
    qCInfo(controlLog) << "Unknown key input";
  } else if (*key == Qt::Key_F1) {
    Q_EMIT idKeyPressed(pressed);
  } else if (*key == Qt::Key_F2) {
    Q_EMIT factoryResetKeyPressed(pressed);
  }
}

}  // namespace vgn_control
