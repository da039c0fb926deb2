#include "test_support/fake_ktm5030.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace test_support {
namespace {

constexpr const char* node = "/dev/ktm5030";
constexpr uint32_t read_mode = 0xC0014B01;
constexpr uint32_t write_mode = 0x40014B02;
constexpr uint32_t read_info = 0xC00C4B00;

/// The side of the terminal that a client opens, which passes bytes on as they are.
int open_raw(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  termios settings{};
  EXPECT_EQ(::tcgetattr(fd, &settings), 0) << path;
  ::cfmakeraw(&settings);
  EXPECT_EQ(::tcsetattr(fd, TCSANOW, &settings), 0) << path;
  return fd;
}

}  // namespace

fake_ktm5030_t::fake_ktm5030_t(fake_udev_t& with) : machine(with), handler(umockdev_ioctl_base_new()) {
  const zyl::lock_t lock(mutex);
  events = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  EXPECT_EQ(::grantpt(events), 0);
  EXPECT_EQ(::unlockpt(events), 0);
  terminal = ::ptsname(events);  // NOLINT(concurrency-mt-unsafe): nobody else asks for one
  reader = open_raw(terminal);
  const std::filesystem::path place = machine.place(node);
  std::filesystem::create_directories(place.parent_path());
  std::filesystem::create_symlink(terminal, place);
  g_signal_connect(handler, "handle-ioctl", G_CALLBACK(on_ioctl), this);
  g_signal_connect(handler, "handle-read", G_CALLBACK(on_read), this);
  EXPECT_TRUE(umockdev_testbed_attach_ioctl(machine.handle(), node, handler, nullptr));
}

fake_ktm5030_t::~fake_ktm5030_t() {
  umockdev_testbed_detach_ioctl(machine.handle(), node, nullptr);
  g_object_unref(handler);
  std::filesystem::remove(machine.place(node));
  ::close(reader);
  const zyl::lock_t lock(mutex);
  if (events >= 0) {
    ::close(events);
  }
}

void fake_ktm5030_t::set_mode_byte(uint8_t byte) {
  const zyl::lock_t lock(mutex);
  mode = byte;
}

uint8_t fake_ktm5030_t::mode_byte() const {
  const zyl::lock_t lock(mutex);
  return mode;
}

void fake_ktm5030_t::set_info(uint32_t first, uint32_t second, uint32_t third) {
  const zyl::lock_t lock(mutex);
  info = {first, second, third};
}

void fake_ktm5030_t::fail(uint32_t request) {
  const zyl::lock_t lock(mutex);
  failing.insert(request);
}

void fake_ktm5030_t::fail_next_read(int error) {
  const zyl::lock_t lock(mutex);
  next_read_error = error;
}

void fake_ktm5030_t::hang_up_at(uint32_t request) {
  const zyl::lock_t lock(mutex);
  last_request = request;
}

void fake_ktm5030_t::tell(uint32_t code) {
  uint8_t bytes[sizeof code];
  std::memcpy(bytes, &code, sizeof code);
  tell_bytes(bytes);
}

void fake_ktm5030_t::tell_bytes(std::span<const uint8_t> bytes) {
  const zyl::lock_t lock(mutex);
  EXPECT_EQ(::write(events, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
}

std::vector<int> fake_ktm5030_t::open_descriptors() const {
  std::vector<int> found;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code closed;  // the one that lists the folder, for instance
    const int fd = std::stoi(entry.path().filename());
    if (fd != reader && std::filesystem::read_symlink(entry, closed) == terminal) {
      found.push_back(fd);
    }
  }
  return found;
}

std::vector<uint32_t> fake_ktm5030_t::requests() const {
  const zyl::lock_t lock(mutex);
  return asked;
}

int fake_ktm5030_t::reads() const {
  const zyl::lock_t lock(mutex);
  return read_count;
}

int fake_ktm5030_t::answer(uint32_t request, std::span<uint8_t> record) {
  const zyl::lock_t lock(mutex);
  asked.push_back(request);
  if (request == last_request) {
    ::close(std::exchange(events, -1));
  }
  if (failing.contains(request)) {
    return EIO;
  }
  if (request == read_mode) {
    record[0] = mode;
  } else if (request == write_mode) {
    mode = record[0];
  } else if (request == read_info) {
    std::memcpy(record.data(), info.data(), sizeof info);
  } else {
    return ENOTTY;
  }
  return 0;
}

/// The errno of the read that has come; 0 for one that succeeds.
int fake_ktm5030_t::failing_read() {
  const zyl::lock_t lock(mutex);
  ++read_count;
  const int error = std::exchange(next_read_error, 0);
  if (error != 0) {
    uint32_t lost = 0;
    EXPECT_EQ(::read(reader, &lost, sizeof lost), ssize_t{sizeof lost});
  }
  return error;
}

gboolean fake_ktm5030_t::on_ioctl(UMockdevIoctlBase* /*handler*/, UMockdevIoctlClient* client, gpointer self) {
  const auto request = static_cast<uint32_t>(umockdev_ioctl_client_get_request(client));
  UMockdevIoctlData* const data =
      umockdev_ioctl_data_resolve(umockdev_ioctl_client_get_arg(client), 0, _IOC_SIZE(request), nullptr);
  std::vector<uint8_t> record(data->data, data->data + data->data_len);
  const int error = static_cast<fake_ktm5030_t*>(self)->answer(request, record);
  if (error == 0) {
    umockdev_ioctl_data_update(data, 0, record.data(), static_cast<gint>(record.size()));
  }
  umockdev_ioctl_client_complete(client, error == 0 ? 0 : -1, error);
  g_object_unref(data);
  return TRUE;
}

gboolean fake_ktm5030_t::on_read(UMockdevIoctlBase* /*handler*/, UMockdevIoctlClient* client, gpointer self) {
  const int error = static_cast<fake_ktm5030_t*>(self)->failing_read();
  if (error == 0) {
    return FALSE;  // the terminal answers
  }
  umockdev_ioctl_client_complete(client, -1, error);
  return TRUE;
}

}  // namespace test_support
