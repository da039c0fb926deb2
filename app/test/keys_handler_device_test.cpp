// The keys on a device that hears requests and whose reads fail in every way.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/input.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTimer>
#include <cerrno>
#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/keys_handler.h"
#include "test_support/fake_key_device.h"
#include "test_support/fake_udev.h"
#include "test_support/key_bytes.h"
#include "test_support/qt_log_capture.h"
#include "test_support/qt_loop_until.h"

namespace {

using test_support::key_bytes;
using testing::ElementsAre;
using testing::IsEmpty;
using vgn_control::KeysHandler;

constexpr const char* press_of_id = "Processing key event: keycode= 59, pressed=1, autorepeat=0";

class KeysHandlerDeviceTest : public testing::Test {
 protected:
  void open() {
    handler = std::make_unique<KeysHandler>(test_support::fake_key_device_t::path);
    QObject::connect(handler.get(), &KeysHandler::idKeyPressed, handler.get(),
                     [this](bool pressed) { told.emplace_back(pressed ? "id down" : "id up"); });
    ASSERT_NE(notifier(), nullptr);
  }

  QSocketNotifier* notifier() const { return handler->findChild<QSocketNotifier*>(); }

  /// The reads to come fail with these errors, one after another; 0 lets a read through, as all behind the last are.
  void planReads(std::deque<int> results) {
    device.on_read([results = std::move(results)]() mutable {
      if (results.empty()) {
        return 0;
      }
      const int result = results.front();
      results.pop_front();
      return result;
    });
  }

  /// As the loop does when the device seems readable.
  void activate() const {
    QEvent activation(QEvent::SockAct);
    QCoreApplication::sendEvent(notifier(), &activation);
  }

  static void turnTheLoopManyTimes() {
    int turns = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] { ++turns; });
    timer.start(0);
    EXPECT_TRUE(test_support::qt_loop_until([&] { return turns >= 50; }));
  }

  static std::string readError(int error) {
    return "Error during the reading from the input device " + std::to_string(error);
  }

  test_support::fake_udev_t machine;
  test_support::fake_key_device_t device{machine};
  test_support::qt_log_capture_t log;
  std::unique_ptr<KeysHandler> handler;
  std::vector<std::string> told;
};

TEST_F(KeysHandlerDeviceTest, SharesTheDeviceThenSetsHowItsKeysRepeat) {
  open();
  EXPECT_THAT(device.requests(), ElementsAre("grab 0", "repeat 400 80"));
}

TEST_F(KeysHandlerDeviceTest, ADeviceThatRefusesBothIsReadAllTheSame) {
  device.refuse(ENOTTY);
  open();
  EXPECT_THAT(device.requests(), ElementsAre("grab 0", "repeat 400 80"));
  device.feed(key_bytes(KEY_F1, 1));
  EXPECT_TRUE(test_support::qt_loop_until([this] { return !told.empty(); }));
  EXPECT_THAT(told, ElementsAre("id down"));
  EXPECT_THAT(log.lines(QtWarningMsg), IsEmpty());
}

TEST_F(KeysHandlerDeviceTest, ADeviceThatHasGoneIsLetGoOfForGood) {
  open();
  const int fd = static_cast<int>(notifier()->socket());
  planReads({ENODEV});
  device.feed("x");
  ASSERT_TRUE(test_support::qt_loop_until([this] { return notifier() == nullptr; }));
  EXPECT_THAT(log.lines(QtCriticalMsg), ElementsAre("Couldn't read from the input device"));
  EXPECT_EQ(::fcntl(fd, F_GETFD), -1);
  turnTheLoopManyTimes();
  EXPECT_EQ(device.reads(), 1);
}

TEST_F(KeysHandlerDeviceTest, ADeviceThatHasGoneIsClosedOnce) {
  open();
  const int fd = static_cast<int>(notifier()->socket());
  planReads({ENODEV});
  activate();
  ASSERT_EQ(::fcntl(fd, F_GETFD), -1);
  ASSERT_EQ(::dup2(STDOUT_FILENO, fd), fd);
  handler.reset();
  EXPECT_GE(::fcntl(fd, F_GETFD), 0);
  ::close(fd);
}

TEST_F(KeysHandlerDeviceTest, ADeviceThatGoesInTheMiddleOfAnEventTellsNothingMore) {
  open();
  planReads({0, ENODEV});
  device.feed(key_bytes(KEY_F1, 1) + key_bytes(KEY_F1, 0).substr(0, 12));
  activate();
  EXPECT_EQ(notifier(), nullptr);
  EXPECT_THAT(told, IsEmpty());
}

TEST_F(KeysHandlerDeviceTest, AnyOtherErrorIsTriedAgainAtTheNextActivation) {
  open();
  planReads({EIO});
  activate();
  EXPECT_THAT(log.lines(QtCriticalMsg), ElementsAre("Couldn't read from the input device"));
  device.feed(key_bytes(KEY_F1, 1));
  activate();
  EXPECT_THAT(told, ElementsAre("id down"));
}

TEST_F(KeysHandlerDeviceTest, AnInterruptedReadIsReadAgainAtOnce) {
  open();
  planReads({EINTR, EINTR});
  device.feed(key_bytes(KEY_F1, 1));
  activate();
  EXPECT_THAT(told, ElementsAre("id down"));
  EXPECT_THAT(log.lines(QtDebugMsg), ElementsAre(readError(EINTR), readError(EINTR), press_of_id));
  EXPECT_EQ(device.reads(), 3);
}

TEST_F(KeysHandlerDeviceTest, AnInterruptionAndAnEmptyReadInTheMiddleOfAnEventAreReadAgain) {
  open();
  device.feed(key_bytes(KEY_F1, 1).substr(0, 23));
  device.on_read([this, results = std::deque{0, EINTR, EAGAIN}]() mutable {
    if (results.empty()) {
      device.feed(key_bytes(KEY_F1, 1).substr(23));
      return 0;
    }
    const int result = results.front();
    results.pop_front();
    return result;
  });
  activate();
  EXPECT_THAT(told, ElementsAre("id down"));
  EXPECT_THAT(log.lines(QtDebugMsg), ElementsAre(readError(EINTR), readError(EAGAIN), press_of_id));
  EXPECT_EQ(device.reads(), 4);
}

TEST_F(KeysHandlerDeviceTest, AnEmptyReadWithoutAnEventBegunEndsTheActivation) {
  open();
  planReads({EAGAIN});
  device.feed(key_bytes(KEY_F1, 1));
  activate();
  EXPECT_THAT(log.lines(QtDebugMsg), ElementsAre(readError(EAGAIN)));
  EXPECT_EQ(device.reads(), 1);
  EXPECT_THAT(told, IsEmpty());
}

TEST_F(KeysHandlerDeviceTest, AnInterruptionBeforeAnEmptyReadEndsWithTheEmptyRead) {
  open();
  planReads({EINTR, EAGAIN});
  activate();
  EXPECT_THAT(log.lines(QtDebugMsg), ElementsAre(readError(EINTR), readError(EAGAIN)));
  EXPECT_EQ(device.reads(), 2);
}

}  // namespace
