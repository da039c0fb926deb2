#include "sim/device_node.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <umockdev.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "sim/descriptor.h"
#include "zyl/exceptions.h"
#include "zyl/mutex.h"

namespace sim {
namespace {

struct unref_t {
  void operator()(gpointer object) const { g_object_unref(object); }
};
using ioctl_data_t = std::unique_ptr<UMockdevIoctlData, unref_t>;
using ioctl_base_t = std::unique_ptr<UMockdevIoctlBase, unref_t>;

/// Throws with the emulation library's own words when a call of it has failed.
class glib_error_t {
 public:
  ~glib_error_t() { g_clear_error(&error); }
  GError** out() { return &error; }
  void check(const std::string& what) const {
    if (error != nullptr) {
      throw zyl::exception_t(what + ": " + error->message);
    }
  }

 private:
  GError* error = nullptr;
};

ioctl_data_t resolve(UMockdevIoctlData* data, size_t offset, size_t size) {
  glib_error_t ignored;  // a null result tells it all: the address is not the client's
  return ioctl_data_t(umockdev_ioctl_data_resolve(data, offset, size, ignored.out()));
}

void update(UMockdevIoctlData* data, std::span<const uint8_t> bytes) {
  // The library takes a pointer to mutable bytes and only reads them.
  std::vector<uint8_t> copy(bytes.begin(), bytes.end());
  umockdev_ioctl_data_update(data, 0, copy.data(), static_cast<gint>(copy.size()));
}

// The feeding end is open for reading too, so that it opens at once and never breaks; O_DIRECT makes every write a
// packet, so that a read gives one record, and it can only be set on the open descriptor.
descriptor_t make_fifo(const std::string& path) {
  constexpr int queued_bytes = 1 << 20;
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  if (::mkfifo(path.c_str(), 0666) != 0) {
    throw zyl::exception_t(path + ": " + std::strerror(errno));
  }
  descriptor_t feeder(::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
  if (!feeder || ::fcntl(feeder.get(), F_SETFL, O_NONBLOCK | O_DIRECT) != 0) {
    throw zyl::exception_t(path + ": " + std::strerror(errno));
  }
  ::fcntl(feeder.get(), F_SETPIPE_SZ, queued_bytes);
  return feeder;
}

}  // namespace

/// What the loop's thread and the testbed's thread have in common.
struct device_node_t::shared_t {
  shared_t() = default;
  /// Ends behind the last callback, also in the eyes of the thread sanitizer, which does not see GLib join its thread.
  ~shared_t() { const zyl::lock_t last(mutex); }

  shared_t(const shared_t&) = delete;
  shared_t& operator=(const shared_t&) = delete;
  shared_t(shared_t&&) = delete;
  shared_t& operator=(shared_t&&) = delete;

  zyl::mutex_t mutex;
  bool gone ZYL_GUARDED_BY(mutex) = true;
  bool ended ZYL_GUARDED_BY(mutex) = false;
  int clients ZYL_GUARDED_BY(mutex) = 0;
  device_calls_t calls ZYL_GUARDED_BY(mutex);
  descriptor_t feeder ZYL_GUARDED_BY(mutex);

  int answer(UMockdevIoctlClient* client);
  int answer_record(uint32_t request, UMockdevIoctlData* record);
  int answer_value(uint32_t request, const UMockdevIoctlData* argument, client_id_t client);
  bool takes_value(uint32_t request);
  void count_client(client_id_t client, int change);
  /// What a read gives without any record: a negative errno, or 0 at the end; nothing if it is to give a record.
  std::optional<int> read_without_record();
  void drop_record() ZYL_REQUIRES(mutex);
  void drain() ZYL_REQUIRES(mutex);
  /// Makes the node readable, for a read that does not give a record.
  void wake_reader() ZYL_REQUIRES(mutex);
};

int device_node_t::shared_t::answer_record(uint32_t request, UMockdevIoctlData* record) {
  std::vector<uint8_t> bytes(record->data, record->data + record->data_len);
  std::vector<ioctl_data_t> written;  // kept until the answer has gone out
  const client_writer_t write = [&](size_t pointer_offset, std::span<const uint8_t> target) {
    written.push_back(resolve(record, pointer_offset, target.size()));
    if (written.back() == nullptr) {
      return false;
    }
    update(written.back().get(), target);
    return true;
  };
  const zyl::lock_t lock(mutex);
  const int error = gone ? ENODEV : calls.request(request, bytes, write);
  if (error == 0) {
    update(record, bytes);
  }
  return error;
}

bool device_node_t::shared_t::takes_value(uint32_t request) {
  const zyl::lock_t lock(mutex);
  return std::find(calls.value_requests.begin(), calls.value_requests.end(), request) != calls.value_requests.end();
}

int device_node_t::shared_t::answer_value(uint32_t request, const UMockdevIoctlData* argument, client_id_t client) {
  const auto size = std::min<size_t>(_IOC_SIZE(request), static_cast<size_t>(argument->data_len));
  std::vector<uint8_t> bytes(argument->data, argument->data + size);
  const zyl::lock_t lock(mutex);
  return gone ? ENODEV : calls.value_request(request, bytes, client);
}

int device_node_t::shared_t::answer(UMockdevIoctlClient* client) {
  const auto request = static_cast<uint32_t>(umockdev_ioctl_client_get_request(client));
  if (takes_value(request)) {
    return answer_value(request, umockdev_ioctl_client_get_arg(client), client);
  }
  const ioctl_data_t record = resolve(umockdev_ioctl_client_get_arg(client), 0, _IOC_SIZE(request));
  return record != nullptr ? answer_record(request, record.get()) : EFAULT;
}

void device_node_t::shared_t::count_client(client_id_t client, int change) {
  const zyl::lock_t lock(mutex);
  const int before = clients;
  clients += change;
  if (change < 0 && calls.closed) {
    calls.closed(client);
  }
  if (clients == 0 && !calls.keeps_records) {
    drain();
  }
  if (calls.opened && (before == 0) != (clients == 0)) {
    calls.opened(clients != 0);
  }
}

// At the end each wake-up gives one end of file and no more: a client that looks again whenever the node is readable
// would look for ever.
std::optional<int> device_node_t::shared_t::read_without_record() {
  const zyl::lock_t lock(mutex);
  if (gone) {
    return -ENODEV;
  }
  if (!ended) {
    return std::nullopt;
  }
  drop_record();
  return 0;
}

void device_node_t::shared_t::drop_record() {
  std::array<uint8_t, 4096> dropped{};
  static_cast<void>(::read(feeder.get(), dropped.data(), dropped.size()));
}

void device_node_t::shared_t::drain() {
  std::array<uint8_t, 4096> dropped{};
  while (::read(feeder.get(), dropped.data(), dropped.size()) > 0) {
  }
}

void device_node_t::shared_t::wake_reader() {
  const char wake = 0;
  static_cast<void>(::write(feeder.get(), &wake, 1));
}

/// The callbacks of the emulation library, all on the testbed's thread.
struct device_node_t::callbacks_t {
  using owner_t = std::shared_ptr<shared_t>;

  /// The library owns what it calls back with, because its thread may still serve a client when the testbed has gone.
  /// It passes that on under locks of GLib that the thread sanitizer cannot see, so the order is also made here.
  static void connect(UMockdevIoctlBase* handler, const char* signal, GCallback callback, const owner_t& shared) {
    auto owner = std::make_unique<owner_t>(shared);
    handed_over.store(true, std::memory_order_release);
    g_signal_connect_data(handler, signal, callback, owner.release(), let_go, GConnectFlags{});
  }

  static owner_t& handed(gpointer owner) {
    static_cast<void>(handed_over.load(std::memory_order_acquire));
    return *static_cast<owner_t*>(owner);
  }

  static void let_go(gpointer owner, GClosure* /*closure*/) { const std::unique_ptr<owner_t> owned(&handed(owner)); }

  inline static std::atomic<bool> handed_over = false;

  static gboolean on_ioctl(UMockdevIoctlBase* /*handler*/, UMockdevIoctlClient* client, gpointer shared) {
    const int error = handed(shared)->answer(client);
    umockdev_ioctl_client_complete(client, error == 0 ? 0 : -1, error);
    return TRUE;
  }

  static gboolean on_read(UMockdevIoctlBase* /*handler*/, UMockdevIoctlClient* client, gpointer shared) {
    const auto result = handed(shared)->read_without_record();
    if (!result) {
      return FALSE;  // the FIFO answers
    }
    umockdev_ioctl_client_complete(client, *result < 0 ? -1 : 0, -*result);
    return TRUE;
  }

  // The library has a signal "client-vanished" as well but, as of 0.17, never raises it.
  static void on_connected(UMockdevIoctlBase* /*handler*/, UMockdevIoctlClient* client, gpointer shared) {
    auto owner = std::make_unique<owner_t>(handed(shared));
    (*owner)->count_client(client, 1);
    g_object_weak_ref(G_OBJECT(client), on_vanished, owner.release());
  }

  static void on_vanished(gpointer owner, GObject* client) {
    const std::unique_ptr<owner_t> owned(static_cast<owner_t*>(owner));
    (*owned)->count_client(client, -1);
  }
};

device_node_t::device_node_t(testbed_t& testbed, const std::string& subsystem, const std::string& sysname,
                             device_calls_t calls, const std::string& folder)
    : bed(testbed),
      node("/dev/" + folder + sysname),
      sys_path("/sys/devices/platform/" + sysname),
      shared(std::make_shared<shared_t>()) {
  {
    const zyl::lock_t lock(shared->mutex);
    shared->feeder = make_fifo(bed.root() + node);
    shared->calls = std::move(calls);
    shared->gone = false;
  }
  attach();
  announce(subsystem, sysname);
}

device_node_t::~device_node_t() {
  {
    const zyl::lock_t lock(shared->mutex);
    shared->gone = true;
    shared->calls = {};
  }
  pull_out();
}

void device_node_t::pull_out() {
  if (pulled_out) {
    return;
  }
  pulled_out = true;
  {
    const zyl::lock_t lock(shared->mutex);
    shared->gone = true;
    shared->wake_reader();
  }
  // So that a device of that name can come again; clients that have the node open keep their handler.
  glib_error_t ignored;
  umockdev_testbed_detach_ioctl(bed.handle(), node.c_str(), ignored.out());
  umockdev_testbed_uevent(bed.handle(), sys_path.c_str(), "remove");
  umockdev_testbed_remove_device(bed.handle(), sys_path.c_str());
  ::unlink((bed.root() + node).c_str());
  ::unlink(hidden_place().c_str());
}

bool device_node_t::is_open() const {
  const zyl::lock_t lock(shared->mutex);
  return shared->clients > 0;
}

void device_node_t::attach() {
  const ioctl_base_t handler(umockdev_ioctl_base_new());
  callbacks_t::connect(handler.get(), "handle-ioctl", G_CALLBACK(callbacks_t::on_ioctl), shared);
  callbacks_t::connect(handler.get(), "handle-read", G_CALLBACK(callbacks_t::on_read), shared);
  callbacks_t::connect(handler.get(), "client-connected", G_CALLBACK(callbacks_t::on_connected), shared);
  glib_error_t error;
  umockdev_testbed_attach_ioctl(bed.handle(), node.c_str(), handler.get(), error.out());
  error.check("no requests on " + node);
}

// Last, because it sends "add", and whoever hears that opens the node. No "N:" line: it would make a node of its own.
void device_node_t::announce(const std::string& subsystem, const std::string& sysname) {
  const std::string minor = std::to_string(bed.take_minor());
  const std::string description = "P: /devices/platform/" + sysname + "\nE: SUBSYSTEM=" + subsystem +
                                  "\nE: DEVNAME=" + node + "\nE: MAJOR=10\nE: MINOR=" + minor + "\nA: dev=10:" + minor +
                                  "\n";
  glib_error_t error;
  umockdev_testbed_add_from_string(bed.handle(), description.c_str(), error.out());
  error.check("no device " + sysname);
}

void device_node_t::end_reads(bool ended) {
  const zyl::lock_t lock(shared->mutex);
  shared->ended = ended;
  shared->drain();
  if (ended) {
    shared->wake_reader();
  }
}

std::string device_node_t::hidden_place() const {
  std::string name = node;
  std::replace(name.begin(), name.end(), '/', '_');
  return bed.root() + "/removed" + name;
}

// Who has the node open keeps its handler until he closes it: a node made anew would not be his. So it is moved.
void device_node_t::set_present(bool present) {
  {
    const zyl::lock_t lock(shared->mutex);
    if (present != shared->gone) {
      return;
    }
    shared->gone = !present;
    shared->drain();
    if (!present) {
      shared->wake_reader();
    }
  }
  const std::string place = bed.root() + node;
  std::filesystem::rename(present ? hidden_place() : place, present ? place : hidden_place());
}

void device_node_t::feed(std::span<const uint8_t> record) {
  const zyl::lock_t lock(shared->mutex);
  if (!shared->gone && (shared->clients > 0 || shared->calls.keeps_records)) {
    static_cast<void>(::write(shared->feeder.get(), record.data(), record.size()));
  }
}

}  // namespace sim
