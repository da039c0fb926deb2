// The keys on a device whose bytes are cut anywhere: each read gives one chunk, which has a length byte in front.
#include "app/keys_handler.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QEvent>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/target.h"

namespace {

using fuzz::require;
using vgn_control::KeysHandler;

constexpr std::size_t event_size = 24;
constexpr std::size_t batch_size = 768;
/// Fewer than the pipe holds, which takes a page for each: there is room for zeros at the end.
constexpr std::size_t most_chunks = 200;

int unknown_keys = 0;

void hear(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& text) {
  unknown_keys += text == "Unknown key input" ? 1 : 0;
}

/// A pipe with a name, whose reader gets what was written chunk by chunk.
class device_t {
 public:
  static constexpr const char* path = "/tmp/keys";

  device_t() {
    ::unlink(path);
    require(::mkfifo(path, 0600) == 0, "a pipe is made");
    feeder = ::open(path, O_RDWR | O_NONBLOCK | O_CLOEXEC);
    require(::fcntl(feeder, F_SETFL, O_NONBLOCK | O_DIRECT) == 0, "the pipe keeps chunks apart");
    require(::fcntl(feeder, F_SETPIPE_SZ, 1 << 20) >= 0, "the pipe is large enough");
  }

  void feed(std::string_view chunk) const {
    require(::write(feeder, chunk.data(), chunk.size()) == static_cast<ssize_t>(chunk.size()), "a chunk is fed");
  }

 private:
  int feeder = -1;
};

/// A key by the names of the signals, and whether it is pressed.
using told_t = std::pair<std::string_view, bool>;

struct expected_t {
  std::vector<told_t> told;
  int unknown_keys = 0;
};

/// What these whole events mean, read by hand.
expected_t expect_of(std::string_view events) {
  expected_t expected;
  for (; !events.empty(); events.remove_prefix(event_size)) {
    uint16_t type = 0;
    uint16_t code = 0;
    int32_t value = 0;
    std::memcpy(&type, events.data() + 16, sizeof type);
    std::memcpy(&code, events.data() + 18, sizeof code);
    std::memcpy(&value, events.data() + 20, sizeof value);
    if (type != 1) {
      continue;
    }
    if (code == 59 || code == 60) {
      expected.told.emplace_back(code == 59 ? "id" : "reset", value != 0);
    } else {
      ++expected.unknown_keys;
    }
  }
  return expected;
}

/// The bytes that each activation gets: chunks until they are whole events, each cut to the room that is left. A last
/// event that is not whole gets zeros, because the reader would wait for its rest.
std::vector<std::string> feed_batches(const device_t& device, fuzz::input_t input) {
  std::vector<std::string> batches;
  std::string batch;
  for (std::size_t chunks = 0; chunks < most_chunks && !input.empty(); ++chunks) {
    const std::string_view chunk = input.take_text();
    if (chunk.empty()) {
      continue;
    }
    device.feed(chunk);
    batch += chunk.substr(0, batch_size - batch.size());
    if (batch.size() % event_size == 0) {
      batches.push_back(std::exchange(batch, {}));
    }
  }
  if (!batch.empty()) {
    const std::string padding(event_size - batch.size() % event_size, '\0');
    device.feed(padding);
    batches.push_back(batch + padding);
  }
  return batches;
}

/// Keys that are read when the target says so.
class keys_t {
 public:
  keys_t() {
    QObject::connect(&handler, &KeysHandler::idKeyPressed, &handler,
                     [this](bool pressed) { told.emplace_back("id", pressed); });
    QObject::connect(&handler, &KeysHandler::factoryResetKeyPressed, &handler,
                     [this](bool pressed) { told.emplace_back("reset", pressed); });
  }

  /// What one activation tells.
  std::vector<told_t> activate() {
    QEvent activation(QEvent::SockAct);
    QCoreApplication::sendEvent(handler.findChild<QSocketNotifier*>(), &activation);
    return std::exchange(told, {});
  }

 private:
  KeysHandler handler{device_t::path};
  std::vector<told_t> told;
};

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  static int argc = 1;
  static char name[] = "key_events";
  static char* argv[] = {name, nullptr};
  static const QCoreApplication app(argc, argv);
  static const device_t device;
  qInstallMessageHandler(hear);

  keys_t keys;
  for (const std::string& batch : feed_batches(device, {data, size})) {
    unknown_keys = 0;
    const expected_t expected = expect_of(batch);
    require(keys.activate() == expected.told, "an activation tells the keys of its events");
    require(unknown_keys == expected.unknown_keys, "other keys are unknown");
  }
  require(keys.activate().empty(), "nothing is left, and a wake-up without data tells nothing");
  return 0;
}
