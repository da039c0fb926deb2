#include "test_support/fake_key_device.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/input.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <utility>

namespace test_support {
namespace {

/// The argument of a request that takes a value, not an address.
uint64_t value_of(UMockdevIoctlData* argument) {
  uint64_t value = 0;
  std::memcpy(&value, argument->data, sizeof value);
  return value;
}

std::string grab_text(UMockdevIoctlData* argument) { return "grab " + std::to_string(value_of(argument)); }

std::string repeat_text(UMockdevIoctlData* argument) {
  std::array<unsigned int, 2> repeat{};
  UMockdevIoctlData* const record = umockdev_ioctl_data_resolve(argument, 0, sizeof repeat, nullptr);
  std::memcpy(repeat.data(), record->data, sizeof repeat);
  g_object_unref(record);
  return "repeat " + std::to_string(repeat[0]) + " " + std::to_string(repeat[1]);
}

std::string request_text(uint64_t request, UMockdevIoctlData* argument) {
  switch (request) {
    case EVIOCGRAB:
      return grab_text(argument);
    case EVIOCSREP:
      return repeat_text(argument);
    default:
      return "request " + std::to_string(request);
  }
}

}  // namespace

fake_key_device_t::fake_key_device_t(fake_udev_t& with) : machine(with), handler(umockdev_ioctl_base_new()) {
  const std::filesystem::path place = machine.place(path);
  std::filesystem::create_directories(place.parent_path());
  EXPECT_EQ(::mkfifo(place.c_str(), 0600), 0);
  feeder = ::open(place.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
  EXPECT_GE(feeder, 0);
  const zyl::lock_t lock(mutex);
  g_signal_connect(handler, "handle-ioctl", G_CALLBACK(handle_ioctl), this);
  g_signal_connect(handler, "handle-read", G_CALLBACK(handle_read), this);
  EXPECT_TRUE(umockdev_testbed_attach_ioctl(machine.handle(), path, handler, nullptr));
}

fake_key_device_t::~fake_key_device_t() {
  umockdev_testbed_detach_ioctl(machine.handle(), path, nullptr);
  g_object_unref(handler);
  ::close(feeder);
  std::filesystem::remove(machine.place(path));
}

void fake_key_device_t::feed(std::string_view bytes) const {
  EXPECT_EQ(::write(feeder, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
}

void fake_key_device_t::on_read(std::function<int()> asked) {
  const zyl::lock_t lock(mutex);
  read_result = std::move(asked);
}

void fake_key_device_t::refuse(int error) {
  const zyl::lock_t lock(mutex);
  refusal = error;
}

std::vector<std::string> fake_key_device_t::requests() const {
  const zyl::lock_t lock(mutex);
  return asked_for;
}

int fake_key_device_t::reads() const {
  const zyl::lock_t lock(mutex);
  return read_count;
}

int fake_key_device_t::note(std::string request) {
  const zyl::lock_t lock(mutex);
  asked_for.push_back(std::move(request));
  return refusal;
}

int fake_key_device_t::asked_to_read() {
  const zyl::lock_t lock(mutex);
  ++read_count;
  return read_result ? read_result() : 0;
}

gboolean fake_key_device_t::handle_ioctl(UMockdevIoctlBase* /*handler*/, UMockdevIoctlClient* client, gpointer self) {
  const std::string request =
      request_text(umockdev_ioctl_client_get_request(client), umockdev_ioctl_client_get_arg(client));
  const int error = static_cast<fake_key_device_t*>(self)->note(request);
  umockdev_ioctl_client_complete(client, error == 0 ? 0 : -1, error);
  return TRUE;
}

gboolean fake_key_device_t::handle_read(UMockdevIoctlBase* /*handler*/, UMockdevIoctlClient* client, gpointer self) {
  const int error = static_cast<fake_key_device_t*>(self)->asked_to_read();
  if (error == 0) {
    return FALSE;  // what was fed
  }
  umockdev_ioctl_client_complete(client, -1, error);
  return TRUE;
}

}  // namespace test_support
