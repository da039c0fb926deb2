#pragma once

#include <map>
#include <string>

struct _UMockdevTestbed;  // NOLINT(bugprone-reserved-identifier): the emulation library's own name

namespace sim {

/// The emulated hardware of one appliance: a folder with device nodes and a sysfs of its own, which programs that run
/// with `environment()` see in place of the machine's. One of them a process.
///
/// The process that makes it sees that hardware too, because a uevent is sent by looking its device up: so it links
/// the preload library, and binds whatever it serves below /dev before it makes the testbed.
class testbed_t {
 public:
  testbed_t();
  /// Ends the thread that serves requests, which may take until the clients are gone that it is serving. Programs that
  /// have a node open must have ended before.
  ~testbed_t();

  testbed_t(const testbed_t&) = delete;
  testbed_t& operator=(const testbed_t&) = delete;
  testbed_t(testbed_t&&) = delete;
  testbed_t& operator=(testbed_t&&) = delete;

  /// The folder that stands for "/" in the emulation.
  const std::string& root() const { return root_folder; }

  /// A minor number that no other device of this testbed has.
  unsigned take_minor() { return next_minor++; }

  /// The environment variables that put a program before this hardware.
  std::map<std::string, std::string> environment() const;

  /// The emulation library's own object; lives as long as this one.
  _UMockdevTestbed* handle() const { return bed; }

 private:
  _UMockdevTestbed* bed;
  std::string root_folder;
  unsigned next_minor = 60;
};

}  // namespace sim
