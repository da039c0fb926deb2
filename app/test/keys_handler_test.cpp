#include "app/keys_handler.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/input.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QMetaMethod>
#include <QTextCodec>
#include <cerrno>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "test_support/key_bytes.h"
#include "test_support/qt_log_capture.h"
#include "test_support/qt_loop_until.h"

namespace {

using test_support::key_bytes;
using test_support::report_bytes;
using testing::ElementsAre;
using testing::IsEmpty;
using vgn_control::KeysHandler;

constexpr const char* device_path = "/tmp/keys";

const std::string no_data_line = "Error during the reading from the input device " + std::to_string(EAGAIN);

/// Keys whose device is a pipe with a name.
class KeysHandlerTest : public testing::Test {
 protected:
  KeysHandlerTest() {
    ::mkfifo(device_path, 0600);
    openFeeder();
    handler = std::make_unique<KeysHandler>(device_path);
    QObject::connect(handler.get(), &KeysHandler::idKeyPressed, handler.get(),
                     [this](bool pressed) { told.emplace_back(pressed ? "id down" : "id up"); });
    QObject::connect(handler.get(), &KeysHandler::factoryResetKeyPressed, handler.get(),
                     [this](bool pressed) { told.emplace_back(pressed ? "reset down" : "reset up"); });
  }
  void TearDown() override { closeFeeder(); }

  void openFeeder() {
    feeder = ::open(device_path, O_RDWR | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(feeder, 0);
  }

  void closeFeeder() {
    if (feeder >= 0) {
      ::close(std::exchange(feeder, -1));
    }
  }

  void feed(const std::string& bytes) const {
    ASSERT_EQ(::write(feeder, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }

  /// What the keys told until all that was fed has been read.
  std::vector<std::string> toldInTheEnd() {
    feed(key_bytes(KEY_F2, 0));
    EXPECT_TRUE(test_support::qt_loop_until([this] { return !told.empty() && told.back() == "reset up"; }));
    told.pop_back();
    return std::exchange(told, {});
  }

  QSocketNotifier* notifier() const { return handler->findChild<QSocketNotifier*>(); }

  /// As the loop does when the device seems readable.
  void activate() const {
    QEvent activation(QEvent::SockAct);
    QCoreApplication::sendEvent(notifier(), &activation);
  }

  std::function<void(const test_support::qt_log_capture_t::line_t&)> on_line = [](const auto&) {};
  test_support::qt_log_capture_t log{[this](const auto& line) { on_line(line); }};
  int feeder = -1;
  std::unique_ptr<KeysHandler> handler;
  std::vector<std::string> told;
};

TEST_F(KeysHandlerTest, TellsThatTheIdKeyGoesDownAndUp) {
  feed(key_bytes(KEY_F1, 1) + report_bytes());
  feed(key_bytes(KEY_F1, 0) + report_bytes());
  EXPECT_THAT(toldInTheEnd(), ElementsAre("id down", "id up"));
}

TEST_F(KeysHandlerTest, TellsThatTheResetKeyGoesDownAndUp) {
  feed(key_bytes(KEY_F2, 1) + report_bytes());
  feed(key_bytes(KEY_F2, 0) + key_bytes(KEY_F1, 1));
  ASSERT_TRUE(test_support::qt_loop_until([this] { return told.size() == 3; }));
  EXPECT_THAT(told, ElementsAre("reset down", "reset up", "id down"));
}

TEST_F(KeysHandlerTest, ARepeatIsOneMorePress) {
  feed(key_bytes(KEY_F1, 1) + key_bytes(KEY_F1, 2) + key_bytes(KEY_F1, 2) + key_bytes(KEY_F1, 0));
  feed(key_bytes(KEY_F2, 1) + key_bytes(KEY_F2, 2));
  EXPECT_THAT(toldInTheEnd(), ElementsAre("id down", "id down", "id down", "id up", "reset down", "reset down"));
}

TEST_F(KeysHandlerTest, SaysEachKeyEventThatItProcesses) {
  feed(key_bytes(KEY_F1, 1) + key_bytes(KEY_F2, 2) + key_bytes(7, 0) + key_bytes(0x2FF, -1));
  toldInTheEnd();
  EXPECT_THAT(log.lines(QtDebugMsg), ElementsAre("Processing key event: keycode= 59, pressed=1, autorepeat=0",
                                                 "Processing key event: keycode= 60, pressed=1, autorepeat=1",
                                                 "Processing key event: keycode=  7, pressed=0, autorepeat=0",
                                                 "Processing key event: keycode=767, pressed=1, autorepeat=0",
                                                 "Processing key event: keycode= 60, pressed=0, autorepeat=0"));
}

TEST_F(KeysHandlerTest, SpeaksInTheCategoryOfTheApplication) {
  feed(key_bytes(KEY_F3, 1));
  toldInTheEnd();
  closeFeeder();
  activate();
  EXPECT_THAT(log.lines(QtWarningMsg), ElementsAre("Got EOF from the input device"));
  EXPECT_THAT(log.categories(), ElementsAre("zyl.vgn.control"));
}

TEST_F(KeysHandlerTest, AnUnknownKeyIsSaidAndNotTold) {
  feed(key_bytes(KEY_F3, 1) + key_bytes(KEY_POWER, 1));
  EXPECT_THAT(toldInTheEnd(), IsEmpty());
  EXPECT_THAT(log.lines(QtInfoMsg), ElementsAre("Unknown key input", "Unknown key input"));
}

TEST_F(KeysHandlerTest, EventsOfOtherTypesAreNeitherToldNorSaid) {
  feed(report_bytes() + test_support::input_event_bytes(EV_MSC, KEY_F1, 1) + std::string(24, '\xFF'));
  EXPECT_THAT(toldInTheEnd(), IsEmpty());
  EXPECT_THAT(log.lines(QtDebugMsg), ElementsAre("Processing key event: keycode= 60, pressed=0, autorepeat=0"));
  EXPECT_THAT(log.lines(QtInfoMsg), IsEmpty());
}

TEST_F(KeysHandlerTest, MoreEventsThanItReadsAtOnceAreToldInOrder) {
  std::string bytes;
  std::vector<std::string> expected;
  for (int event = 0; event < 100; ++event) {
    bytes += key_bytes(event % 3 == 0 ? KEY_F1 : KEY_F2, 1);
    expected.emplace_back(event % 3 == 0 ? "id down" : "reset down");
  }
  feed(bytes);
  EXPECT_EQ(toldInTheEnd(), expected);
}

TEST_F(KeysHandlerTest, AnEventCutInTheMiddleIsCompletedWithinTheActivation) {
  const std::string bytes = key_bytes(KEY_F1, 1) + key_bytes(KEY_F1, 0);
  bool waited = false;
  on_line = [&](const auto& line) {
    if (line.type == QtDebugMsg && !std::exchange(waited, true)) {
      EXPECT_EQ(line.text, no_data_line);
      feed(bytes.substr(31));
    }
  };
  feed(bytes.substr(0, 31));
  activate();
  EXPECT_THAT(told, ElementsAre("id down", "id up"));
}

TEST_F(KeysHandlerTest, AnEventThatComesByteByByteIsCompletedWithinTheActivation) {
  const std::string bytes = key_bytes(KEY_F1, 1);
  std::size_t fed = 1;
  on_line = [&](const auto& line) {
    if (fed < bytes.size() && line.type == QtDebugMsg) {
      feed(bytes.substr(fed++, 1));
    }
  };
  feed(bytes.substr(0, 1));
  activate();
  EXPECT_EQ(fed, bytes.size());
  EXPECT_THAT(told, ElementsAre("id down"));
}

TEST_F(KeysHandlerTest, AWakeUpWithoutDataIsSaidAndWaitsForNone) {
  activate();
  EXPECT_THAT(log.lines(QtDebugMsg), ElementsAre(no_data_line));
  feed(key_bytes(KEY_F1, 1));
  EXPECT_THAT(toldInTheEnd(), ElementsAre("id down"));
}

TEST_F(KeysHandlerTest, AnEndOfTheStreamIsWarnedOfAndSurvived) {
  closeFeeder();
  activate();
  EXPECT_THAT(log.lines(QtWarningMsg), ElementsAre("Got EOF from the input device"));
  ASSERT_NE(notifier(), nullptr);
  openFeeder();
  feed(key_bytes(KEY_F1, 1));
  EXPECT_THAT(toldInTheEnd(), ElementsAre("id down"));
}

TEST_F(KeysHandlerTest, AnEndInTheMiddleOfAnEventDropsWhatTheActivationHasRead) {
  feed(key_bytes(KEY_F1, 1) + key_bytes(KEY_F1, 0).substr(0, 10));
  closeFeeder();
  activate();
  EXPECT_THAT(log.lines(QtWarningMsg), ElementsAre("Got EOF from the input device"));
  EXPECT_THAT(told, IsEmpty());
  openFeeder();
  feed(key_bytes(KEY_F1, 2));
  EXPECT_THAT(toldInTheEnd(), ElementsAre("id down"));
}

TEST_F(KeysHandlerTest, WhatWasWrittenBeforeTheEndIsTold) {
  feed(key_bytes(KEY_F1, 1) + key_bytes(KEY_F1, 0));
  closeFeeder();
  activate();
  EXPECT_THAT(told, ElementsAre("id down", "id up"));
  EXPECT_THAT(log.lines(QtWarningMsg), IsEmpty());
}

TEST_F(KeysHandlerTest, LetsGoOfItsDeviceWhenItIsDestroyed) {
  handler.reset();
  ::close(std::exchange(feeder, -1));
  EXPECT_EQ(::open(device_path, O_WRONLY | O_NONBLOCK | O_CLOEXEC), -1);
  EXPECT_EQ(errno, ENXIO);
}

TEST(KeysHandler, AnEmptyPathIsOneWarningAndDeadKeys) {
  const test_support::qt_log_capture_t log;
  const KeysHandler handler("");
  EXPECT_THAT(log.lines(QtWarningMsg), ElementsAre("Couldn't open the input device"));
  EXPECT_THAT(log.categories(), ElementsAre("zyl.vgn.control"));
  EXPECT_EQ(handler.findChild<QSocketNotifier*>(), nullptr);
}

TEST(KeysHandler, ADeviceThatIsNotThereIsOneWarningAndDeadKeys) {
  const test_support::qt_log_capture_t log;
  const KeysHandler handler("/dev/input/event99");
  EXPECT_THAT(log.lines(QtWarningMsg), ElementsAre("Couldn't open the input device"));
  EXPECT_EQ(handler.findChild<QSocketNotifier*>(), nullptr);
}

// A folder opens like a device, but nothing reads it.
TEST(KeysHandler, AReadThatFailsIsCriticalAndTriedAgainAtTheNextActivation) {
  const test_support::qt_log_capture_t log;
  const KeysHandler handler("/tmp");
  QEvent activation(QEvent::SockAct);
  QCoreApplication::sendEvent(handler.findChild<QSocketNotifier*>(), &activation);
  QCoreApplication::sendEvent(handler.findChild<QSocketNotifier*>(), &activation);
  EXPECT_THAT(log.lines(QtCriticalMsg),
              ElementsAre("Couldn't read from the input device", "Couldn't read from the input device"));
  EXPECT_THAT(log.categories(), ElementsAre("zyl.vgn.control"));
}

/// While it lives, local 8-bit text is in this encoding.
class local_encoding_t {
 public:
  explicit local_encoding_t(const char* name) { QTextCodec::setCodecForLocale(QTextCodec::codecForName(name)); }
  ~local_encoding_t() { QTextCodec::setCodecForLocale(before); }

  local_encoding_t(const local_encoding_t&) = delete;
  local_encoding_t& operator=(const local_encoding_t&) = delete;

 private:
  QTextCodec* before = QTextCodec::codecForLocale();
};

TEST(KeysHandler, APathBeyondAsciiIsOpenedInTheLocalEncoding) {
  const local_encoding_t local("ISO-8859-1");
  ASSERT_EQ(::mkfifo("/tmp/cl\xE9s", 0600), 0);
  const test_support::qt_log_capture_t log;
  const KeysHandler handler(QString("/tmp/cl") + QChar(0xE9) + "s");
  EXPECT_NE(handler.findChild<QSocketNotifier*>(), nullptr);
  EXPECT_THAT(log.lines(QtWarningMsg), IsEmpty());
}

TEST(KeysHandler, TellsOfTheIdKeyFirstInItsDescription) {
  const QMetaObject& meta = KeysHandler::staticMetaObject;
  const int first = meta.methodOffset();
  ASSERT_EQ(meta.methodCount() - first, 2);
  EXPECT_EQ(meta.method(first).methodSignature(), "idKeyPressed(bool)");
  EXPECT_EQ(meta.method(first + 1).methodSignature(), "factoryResetKeyPressed(bool)");
}

}  // namespace
