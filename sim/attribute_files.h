#pragma once

#include <functional>
#include <map>
#include <string>

#include "sim/descriptor.h"
#include "zyl/event_ptr.h"

namespace sim {

/// Plain files that take writes as the attributes of sysfs and /proc do: every open finds the attribute empty, with
/// O_TRUNC or without, and each text that is written reaches the driver, alone and in order, however fast they come.
///
/// For each open there is a file of its own. The one that stands at the path is held by a lease; somebody's open for
/// writing waits until the loop has put the next file in its place and given up the lease, and what the first one then
/// holds is taken when it is closed. So the process of the loop itself must not open one of them for writing: it would
/// wait for itself until the kernel gives up, also from another thread, as the emulation locks whatever opens a file.
///
/// Programs that open one at the same moment get the same file, though: what the others write after the first of them
/// has closed it is lost.
///
/// What is written between an open and its close counts as one text; an empty one counts as none. Reading gives
/// nothing. Uses SIGIO of the process. Loop thread only.
class attribute_files_t {
 public:
  /// `path` is as it was added.
  using write_handler_t = std::function<void(const std::string& path, const std::string& text)>;

  /// The files stand below the folder `root`. Throws `std::system_error`.
  attribute_files_t(event_base* base, std::string root, write_handler_t on_write);

  attribute_files_t(const attribute_files_t&) = delete;
  attribute_files_t& operator=(const attribute_files_t&) = delete;
  attribute_files_t(attribute_files_t&&) = delete;
  attribute_files_t& operator=(attribute_files_t&&) = delete;
  ~attribute_files_t() = default;

  /// Makes the file and the folders that lead to it. Throws `std::system_error`.
  void add(const std::string& path);

  /// Takes the file away, and with the last file its folder. What somebody who has it open, or waits for that, then
  /// writes is lost. Nothing happens if there is none.
  void remove(const std::string& path);

 private:
  struct file_t {
    std::string path;
    int watch = -1;
    descriptor_t descriptor;
  };

  static void on_lease_break(evutil_socket_t number, short events, void* self);
  static void on_closed(evutil_socket_t fd, short events, void* self);
  void let_openers_in();
  void take_closed();
  void take(int watch);
  void forget(const file_t& file);
  file_t put_new(const std::string& path);

  std::string root;
  write_handler_t on_write;
  descriptor_t notifier;
  std::map<std::string, file_t> waiting;  ///< by path: the file that the next open gets
  std::map<int, file_t> opened;           ///< by watch: the files that somebody writes
  zyl::event_ptr_t lease_break;
  zyl::event_ptr_t closed;
};

}  // namespace sim
