#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "sim/testbed.h"

namespace sim {

/// Writes bytes into the client's memory, at the address that stands `pointer_offset` bytes into the request's record.
/// False when the client has no such memory.
using client_writer_t = std::function<bool(size_t pointer_offset, std::span<const uint8_t> bytes)>;

/// One client's open of a node, from then to its close. Only to be compared.
using client_id_t = const void*;

/// What a device does, called on the thread of the testbed, one call at a time, never after `~device_node_t`.
struct device_calls_t {
  /// Answers a request: 0, or the errno it fails with. `record` is the client's, and goes back to it on success.
  std::function<int(uint32_t request, std::span<uint8_t> record, const client_writer_t& write)> request;
  /// The requests whose argument is a value in itself, not the address of a record: `value_request` answers them.
  std::vector<uint32_t> value_requests = {};
  /// Like `request`; `value` is as long as the request's code says. May be empty if there are no such requests.
  std::function<int(uint32_t request, std::span<const uint8_t> value, client_id_t client)> value_request = {};
  /// The first client has opened the node, or the last one has closed it. May be empty.
  std::function<void(bool open)> opened = {};
  /// A client has closed the node. May be empty.
  std::function<void(client_id_t client)> closed = {};
  /// Whether what is fed waits for the next client while there is none.
  bool keeps_records = false;
};

/// A character device in a testbed: its node, its place in sysfs, its uevents. It exists from construction, which
/// sends "add", to `pull_out` or destruction, which send "remove"; who then still has the node open gets ENODEV. Made,
/// used and destroyed on one thread.
class device_node_t {
 public:
  /// The node is "/dev/<folder><sysname>". Throws `zyl::exception_t` when the testbed refuses it.
  device_node_t(testbed_t& testbed, const std::string& subsystem, const std::string& sysname, device_calls_t calls,
                const std::string& folder = "");
  ~device_node_t();

  device_node_t(const device_node_t&) = delete;
  device_node_t& operator=(const device_node_t&) = delete;
  device_node_t(device_node_t&&) = delete;
  device_node_t& operator=(device_node_t&&) = delete;

  /// Gives one record to whoever reads the node. Dropped while nobody has it open, unless the device keeps records, or
  /// the reader is far behind, as a driver does.
  void feed(std::span<const uint8_t> record);

  /// Makes every read an end of file, and causes one; with false, reads give records again. What is fed meanwhile is
  /// lost.
  void end_reads(bool ended);

  /// Takes the node out of sight, or puts it back, without a word to udev. While it is out, requests and reads of who
  /// has it open fail with ENODEV, and what waited to be read or is fed is lost.
  void set_present(bool present);

  /// Takes the device away for good, as if it was pulled out; another one of its name can come. Who has the node open
  /// is still told by `device_calls_t` when he closes it. Nothing happens to one that is pulled out.
  void pull_out();

  /// Whether a client has the node open, this one and not another that came after it.
  bool is_open() const;

  const std::string& syspath() const { return sys_path; }

 private:
  struct shared_t;
  struct callbacks_t;

  void attach();
  void announce(const std::string& subsystem, const std::string& sysname);
  /// Where the node is while it is out of sight.
  std::string hidden_place() const;

  testbed_t& bed;
  std::string node;
  std::string sys_path;
  bool pulled_out = false;
  /// The emulation library has a share in it for as long as it may call back.
  std::shared_ptr<shared_t> shared;
};

}  // namespace sim
