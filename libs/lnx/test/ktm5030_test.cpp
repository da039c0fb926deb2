#include "lnx/src/ktm5030.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

#include "test_support/fake_ktm5030.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class Ktm5030 : public testing::Test {
 protected:
  void tell(std::initializer_list<uint32_t> codes) {
    for (const uint32_t code : codes) {
      device->tell(code);
    }
  }

  test_support::fake_udev_t machine;
  std::optional<test_support::fake_ktm5030_t> device{std::in_place, machine};
  lnx::ktm5030_status_t status;
};

/// Words that nobody writes.
void mark(lnx::ktm5030_status_t& status) { status = {7, {71, 72, 73}, 8, 9}; }

/// The two ends of a pipe, which stand for a descriptor of the device.
class pipe_t {
 public:
  pipe_t() { EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK), 0); }
  ~pipe_t() {
    close_reader();
    close_writer();
  }

  pipe_t(const pipe_t&) = delete;
  pipe_t& operator=(const pipe_t&) = delete;
  pipe_t(pipe_t&&) = delete;
  pipe_t& operator=(pipe_t&&) = delete;

  int reader() const { return ends[0]; }
  int writer() const { return ends[1]; }
  void close_reader() { close_end(ends[0]); }
  void close_writer() { close_end(ends[1]); }

  void tell(uint32_t code) const { EXPECT_EQ(::write(writer(), &code, sizeof code), ssize_t{sizeof code}); }

 private:
  static void close_end(int& fd) {
    if (fd >= 0) {
      ::close(std::exchange(fd, -1));
    }
  }

  std::array<int, 2> ends{-1, -1};
};

void expect_marked(const lnx::ktm5030_status_t& status) {
  EXPECT_EQ(status.signal, 7U);
  EXPECT_EQ(status.info.first, 71U);
  EXPECT_EQ(status.info.second, 72U);
  EXPECT_EQ(status.info.third, 73U);
  EXPECT_EQ(status.flag_a, 8);
  EXPECT_EQ(status.flag_b, 9);
}

}  // namespace

TEST_F(Ktm5030, WithoutTheDeviceEverythingFailsAtOnce) {
  device.reset();
  mark(status);
  uint32_t mode = 77;
  EXPECT_EQ(lnx::ktm5030_get_mode(mode), 0);
  EXPECT_EQ(mode, 77U);
  EXPECT_FALSE(lnx::ktm5030_set_mode(1));
  EXPECT_FALSE(lnx::ktm5030_read_info(status));
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 0U);
  expect_marked(status);
}

TEST_F(Ktm5030, FailedRequestsAreFailuresThatChangeNothing) {
  for (const uint32_t request :
       {lnx::ktm5030_read_mode_request, lnx::ktm5030_write_mode_request, lnx::ktm5030_read_info_request}) {
    device->fail(request);
  }
  mark(status);
  uint32_t mode = 77;
  EXPECT_EQ(lnx::ktm5030_get_mode(mode), 0);
  EXPECT_EQ(mode, 77U);
  EXPECT_FALSE(lnx::ktm5030_set_mode(1));
  EXPECT_FALSE(lnx::ktm5030_read_info(status));
  expect_marked(status);
  EXPECT_THAT(device->requests(), ElementsAre(0xC0014B01, 0x40014B02, 0xC00C4B00));
}

TEST_F(Ktm5030, ModeZeroIsStoredAsZeroAndTrue) {
  uint32_t mode = 77;
  EXPECT_EQ(lnx::ktm5030_get_mode(mode), 1);
  EXPECT_EQ(mode, 0U);
  EXPECT_THAT(device->requests(), ElementsAre(0xC0014B01));
}

TEST_F(Ktm5030, AnyOtherModeIsStoredAsTwoAndHandedOutAsItIs) {
  for (const uint8_t byte : std::initializer_list<uint8_t>{1, 2, 3, 128, 255}) {
    device->set_mode_byte(byte);
    uint32_t mode = 77;
    EXPECT_EQ(lnx::ktm5030_get_mode(mode), byte);
    EXPECT_EQ(mode, 2U);
  }
}

TEST_F(Ktm5030, ModesOneAndTwoAreWrittenAsOne) {
  for (const uint32_t mode : {1U, 2U}) {
    device->set_mode_byte(99);
    EXPECT_TRUE(lnx::ktm5030_set_mode(mode));
    EXPECT_EQ(device->mode_byte(), 1) << mode;
  }
  EXPECT_THAT(device->requests(), ElementsAre(0x40014B02, 0x40014B02));
}

TEST_F(Ktm5030, AnyOtherModeIsWrittenAsZero) {
  for (const uint32_t mode : {0U, 3U, 255U, 256U, 257U, 0xFFFFFFFFU}) {
    device->set_mode_byte(99);
    EXPECT_TRUE(lnx::ktm5030_set_mode(mode));
    EXPECT_EQ(device->mode_byte(), 0) << mode;
  }
}

TEST_F(Ktm5030, InfoIsReadAndNothingElseOfTheStatus) {
  device->set_info(1, 0x80000000, 0xFFFFFFFF);
  mark(status);
  EXPECT_TRUE(lnx::ktm5030_read_info(status));
  EXPECT_EQ(status.info.first, 1U);
  EXPECT_EQ(status.info.second, 0x80000000);
  EXPECT_EQ(status.info.third, 0xFFFFFFFF);
  EXPECT_EQ(status.signal, 7U);
  EXPECT_EQ(status.flag_a, 8);
  EXPECT_EQ(status.flag_b, 9);
}

TEST_F(Ktm5030, EachReadOfTheInfoUsesUpOneDescriptor) {
  EXPECT_TRUE(lnx::ktm5030_read_info(status));
  EXPECT_TRUE(lnx::ktm5030_read_info(status));
  device->fail(lnx::ktm5030_read_info_request);
  EXPECT_FALSE(lnx::ktm5030_read_info(status));
  EXPECT_THAT(device->open_descriptors(), SizeIs(3));
}

TEST_F(Ktm5030, TheDeviceIsOpenedForReadingAndWritingAndNotForChildren) {
  EXPECT_TRUE(lnx::ktm5030_read_info(status));
  const auto open = device->open_descriptors();
  ASSERT_THAT(open, SizeIs(1));
  EXPECT_EQ(::fcntl(open[0], F_GETFL) & O_ACCMODE, O_RDWR);
  EXPECT_EQ(::fcntl(open[0], F_GETFD), FD_CLOEXEC);
}

TEST_F(Ktm5030, AllOtherFunctionsCloseTheDevice) {
  uint32_t mode = 0;
  EXPECT_NE(lnx::ktm5030_get_mode(mode), 0);
  EXPECT_TRUE(lnx::ktm5030_set_mode(1));
  tell({2});
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 2U);
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 0U);
  EXPECT_THAT(device->open_descriptors(), IsEmpty());
}

TEST_F(Ktm5030, AllOtherFunctionsCloseTheDeviceAlsoWhenARequestFails) {
  for (const uint32_t request :
       {lnx::ktm5030_read_mode_request, lnx::ktm5030_write_mode_request, lnx::ktm5030_read_info_request}) {
    device->fail(request);
  }
  uint32_t mode = 0;
  EXPECT_EQ(lnx::ktm5030_get_mode(mode), 0);
  EXPECT_FALSE(lnx::ktm5030_set_mode(1));
  tell({2});
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 2U);
  EXPECT_THAT(device->open_descriptors(), IsEmpty());
}

TEST_F(Ktm5030, WithoutEventsNothingChangesAndNothingIsAsked) {
  mark(status);
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 0U);
  expect_marked(status);
  EXPECT_EQ(device->reads(), 0);
  EXPECT_THAT(device->requests(), SizeIs(0));
}

TEST_F(Ktm5030, EventsZeroAndOneTurnTheSignalOnAndOff) {
  tell({0});
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 1U);
  EXPECT_EQ(status.signal, 1U);
  tell({1});
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 1U);
  EXPECT_EQ(status.signal, 0U);
}

TEST_F(Ktm5030, EventTwoReadsTheInfo) {
  device->set_info(11, 12, 13);
  tell({2});
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 2U);
  EXPECT_EQ(status.info.first, 11U);
  EXPECT_EQ(status.info.second, 12U);
  EXPECT_EQ(status.info.third, 13U);
  EXPECT_THAT(device->requests(), ElementsAre(0xC00C4B00));
}

TEST_F(Ktm5030, EventTwoWithoutInfoClearsItsFirstAndThirdWordsAndCountsAllTheSame) {
  device->fail(lnx::ktm5030_read_info_request);
  mark(status);
  tell({2});
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 2U);
  EXPECT_EQ(status.info.first, 0U);
  EXPECT_EQ(status.info.second, 72U);
  EXPECT_EQ(status.info.third, 0U);
}

TEST_F(Ktm5030, EventsThreeAndFourTurnFlagAOnAndOff) {
  tell({3});
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 4U);
  EXPECT_EQ(status.flag_a, 1);
  EXPECT_EQ(status.flag_b, 0);
  tell({4});
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 4U);
  EXPECT_EQ(status.flag_a, 0);
}

TEST_F(Ktm5030, EventsFiveAndSixTurnFlagBOnAndOff) {
  tell({5});
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 8U);
  EXPECT_EQ(status.flag_b, 1);
  EXPECT_EQ(status.flag_a, 0);
  tell({6});
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 8U);
  EXPECT_EQ(status.flag_b, 0);
}

TEST_F(Ktm5030, UnknownEventsChangeNothing) {
  mark(status);
  tell({7, 255, 256, 0x80000000, 0xFFFFFFFF});
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 0U);
  EXPECT_EQ(device->reads(), 5);
  expect_marked(status);
}

TEST_F(Ktm5030, AllThatWaitsIsTakenInOneCallAndTheLastOfAKindHolds) {
  device->set_info(11, 12, 13);
  tell({0, 3, 9, 2, 4, 1, 5, 0});
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 15U);
  EXPECT_EQ(device->reads(), 8);
  EXPECT_EQ(status.signal, 1U);
  EXPECT_EQ(status.info.second, 12U);
  EXPECT_EQ(status.flag_a, 0);
  EXPECT_EQ(status.flag_b, 1);
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 0U);
}

TEST_F(Ktm5030, AFailedReadChangesNothingAndTheNextEventIsTaken) {
  for (const int error : {EIO, EINTR, EAGAIN}) {
    status = {};
    device->fail_next_read(error);
    tell({0, 3});
    EXPECT_EQ(lnx::ktm5030_poll_events(status), 4U) << error;
    EXPECT_EQ(status.signal, 0U) << error;
    EXPECT_EQ(status.flag_a, 1) << error;
  }
  EXPECT_EQ(device->reads(), 6);
}

TEST_F(Ktm5030, HalfAnEventChangesNothing) {
  mark(status);
  device->tell_bytes(std::array<uint8_t, 2>{});
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 0U);
  EXPECT_EQ(device->reads(), 1);
  expect_marked(status);
}

TEST_F(Ktm5030, ADeviceThatHangsUpEndsTheDrain) {
  device->set_info(11, 12, 13);
  device->hang_up_at(lnx::ktm5030_read_info_request);
  tell({3, 2});
  // For ever readable from then on, with nothing to read.
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 6U);
  EXPECT_EQ(status.info.first, 11U);
  EXPECT_EQ(device->reads(), 3);
}

TEST_F(Ktm5030, ANodeThatIsReadableForEverAndGivesNothingEndsTheDrain) {
  device.reset();
  machine.write("/dev/ktm5030", std::string("\0\0\0\0\3\0\0\0", 8));
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 5U);
  EXPECT_EQ(status.signal, 1U);
  EXPECT_EQ(status.flag_a, 1);
  machine.write("/dev/ktm5030", "");
  EXPECT_EQ(lnx::ktm5030_poll_events(status), 0U);
}

TEST(Ktm5030Descriptor, ReadsThatCanOnlyFailEndTheDrain) {
  lnx::ktm5030_status_t status;
  mark(status);
  // A folder is always readable to poll, and EISDIR to read.
  const int folder = ::open("/tmp", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ASSERT_GE(folder, 0);
  EXPECT_EQ(lnx::ktm5030_take_events(folder, status), 0U);
  expect_marked(status);
  ::close(folder);
}

TEST(Ktm5030Descriptor, AnErrorEndsTheDrain) {
  lnx::ktm5030_status_t status;
  mark(status);
  pipe_t pipe;
  pipe.close_reader();
  // For ever in error from then on.
  EXPECT_EQ(lnx::ktm5030_take_events(pipe.writer(), status), 0U);
  expect_marked(status);
}

TEST(Ktm5030Descriptor, AHangUpEndsTheDrainBehindTheEventThatCameWithIt) {
  lnx::ktm5030_status_t status;
  pipe_t pipe;
  pipe.tell(0);
  pipe.tell(3);
  pipe.close_writer();
  EXPECT_EQ(lnx::ktm5030_take_events(pipe.reader(), status), 1U);
  EXPECT_EQ(lnx::ktm5030_take_events(pipe.reader(), status), 4U);
  EXPECT_EQ(lnx::ktm5030_take_events(pipe.reader(), status), 0U);
}

TEST(Ktm5030Descriptor, StaysOpenAndNoneHasNoEvents) {
  lnx::ktm5030_status_t status;
  const pipe_t pipe;
  pipe.tell(5);
  EXPECT_EQ(lnx::ktm5030_take_events(pipe.reader(), status), 8U);
  EXPECT_NE(::fcntl(pipe.reader(), F_GETFD), -1);
  EXPECT_EQ(lnx::ktm5030_take_events(-1, status), 0U);
  const int closed = ::dup(pipe.reader());
  ::close(closed);
  EXPECT_EQ(lnx::ktm5030_take_events(closed, status), 0U);
}
