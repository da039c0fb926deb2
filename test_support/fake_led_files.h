#pragma once

#include <map>
#include <string>
#include <vector>

#include "test_support/fake_udev.h"

namespace test_support {

/// Files below /sys and /proc on a machine of the test's, which must outlive this: tells what is written to them.
///
/// They are plain files, which forget nothing: who writes without truncation leaves the end of a longer text before.
/// `take_writes` empties them.
class fake_led_files_t {
 public:
  explicit fake_led_files_t(const fake_udev_t& machine);
  ~fake_led_files_t();

  fake_led_files_t(const fake_led_files_t&) = delete;
  fake_led_files_t& operator=(const fake_led_files_t&) = delete;
  fake_led_files_t(fake_led_files_t&&) = delete;
  fake_led_files_t& operator=(fake_led_files_t&&) = delete;

  /// Makes an empty file with its folders, in place of what is there. So do the next two.
  void make(const std::string& path);
  /// Cannot be opened, not even by root.
  void make_unwritable(const std::string& path);
  /// Can be opened, and takes no byte.
  void make_full(const std::string& path);
  void remove(const std::string& path);

  /// What was written since the last call, in the order in which the files were closed: "<folder>/<file>=<text>". A
  /// file that was written twice, also twice in a row, shows its latest text twice.
  std::vector<std::string> take_writes();

 private:
  std::string place_for(const std::string& path);
  std::vector<std::string> closed_files();

  const fake_udev_t& machine;
  int watch;
  std::map<int, std::string> watched_folders;
};

}  // namespace test_support
