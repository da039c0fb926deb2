#include "vgn/src/device.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace {

constexpr const char* fifo_path = "/tmp/device_test.fifo";

class device : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(mkfifo(fifo_path, 0600), 0); }
  void TearDown() override { unlink(fifo_path); }

  vgn::device_t tested;
  std::array<std::byte, 16> buffer{};
};

TEST_F(device, that_is_not_there_gives_the_negative_errno) {
  EXPECT_EQ(tested.open("/tmp/no such device"), -ENOENT);
  EXPECT_EQ(tested.fd(), -1);
}

TEST_F(device, refuses_calls_before_it_is_open) {
  uint32_t record = 0;
  EXPECT_EQ(tested.ioctl(FIONREAD, &record), -EBADF);
  EXPECT_EQ(tested.read(buffer), -EBADF);
}

TEST_F(device, is_opened_without_blocking) {
  ASSERT_EQ(tested.open(fifo_path), 0);
  EXPECT_GE(tested.fd(), 0);
  EXPECT_EQ(tested.read(buffer), -EAGAIN);
}

TEST_F(device, reads_and_asks_what_the_node_has) {
  ASSERT_EQ(tested.open(fifo_path), 0);
  ASSERT_EQ(write(tested.fd(), "12345678", 8), 8);
  int waiting = 0;
  EXPECT_EQ(tested.ioctl(FIONREAD, &waiting), 0);
  EXPECT_EQ(waiting, 8);
  EXPECT_EQ(tested.read(buffer), 8);
}

TEST_F(device, gives_the_negative_errno_of_a_request_that_the_node_does_not_know) {
  ASSERT_EQ(tested.open(fifo_path), 0);
  uint32_t record = 0;
  EXPECT_EQ(tested.ioctl(0xC0045616, &record), -ENOTTY);
}

TEST_F(device, that_is_closed_gives_its_descriptor_back) {
  ASSERT_EQ(tested.open(fifo_path), 0);
  const int descriptor = tested.fd();
  tested.close();
  EXPECT_EQ(tested.fd(), -1);
  EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
}

TEST_F(device, opened_twice_holds_one_descriptor) {
  ASSERT_EQ(tested.open(fifo_path), 0);
  const int first = tested.fd();
  ASSERT_EQ(tested.open(fifo_path), 0);
  EXPECT_EQ(tested.fd(), first);
}

}  // namespace
