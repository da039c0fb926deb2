#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "zyl/exceptions.h"
#include "zyl/platform_tables.h"

namespace zyl {

/// A property that says what hardware this is could not be read.
class platform_unreadable_exception_t : public exception_t {
 public:
  explicit platform_unreadable_exception_t(const std::string& path) : exception_t("cannot read " + path) {}
};

/// What hardware this is: read once at process start, constant from then on. Any thread.
class platform_t {
 public:
  /// Gives the value of a property, or nothing if it cannot be read.
  using reader_t = std::function<std::optional<std::string>(const std::string& path)>;

  /// An unknown platform: all numbers 0, all texts empty.
  platform_t() = default;

  /// Reads the properties below "/sys/config/" in their fixed order. Unknown words and part numbers give 0. Throws
  /// `platform_unreadable_exception_t` at the first that cannot be read.
  explicit platform_t(const reader_t& read);

  /// Reads the platform from the property service: two attempts, each on a connection of its own, a second of silence
  /// allowed for each property. If both fail, tells so and ends the process with status -1: without an identity it does
  /// not run.
  static platform_t from_bus();

  /// Makes `installed` the process's platform; it is not owned and must stay. Null takes it back.
  static void install(const platform_t* installed);

  /// The process's platform; the unknown one while none is installed.
  static const platform_t& get();

  /// 1 x86_64, 2 powerpc, 3 arm, 4 a8_arm, 6 aarch64; 0 for any other.
  uint32_t architecture() const { return architecture_value; }
  /// The value of the platform word.
  uint32_t platform() const { return platform_value; }
  /// The model id, by the model table.
  uint32_t part() const { return part_id; }
  /// As the property says, also if no model has it.
  const std::string& part_number() const { return part_text; }
  const std::string& firmware_crc() const { return crc; }
  const std::string& firmware_hash() const { return hash; }
  const std::string& compatible_firmware_crc() const { return compatible_crc; }
  const std::string& compatible_firmware_hash() const { return compatible_hash; }

  /// The model id of a part number; 0 for one that no model has.
  static uint32_t part_id_of(std::string_view part_number);
  /// The first and the second class value of a model; 0 for an unknown id.
  static uint32_t family(uint32_t id);
  static uint32_t variant(uint32_t id);
  /// The name of a model; "Unknown" for an unknown id.
  static std::string_view display_name(uint32_t id);

  /// The CPUs of a model for a kind of work. Id 0 has none; for an id without a row there is a warning and a default:
  /// none, "cpu0", and "cpu1" to "cpu3".
  static const cpu_names_t& network_cpus(uint32_t id);
  static const cpu_names_t& control_cpus(uint32_t id);
  static const cpu_names_t& processing_cpus(uint32_t id);

  /// The number of the board, read at first use; 1 if there is none.
  static int board_id();
  /// Whether this machine is virtual.
  static bool is_hypervisor();
  /// Whether this process runs in a container.
  static bool is_container();

 private:
  uint32_t architecture_value = 0;
  uint32_t platform_value = 0;
  uint32_t part_id = 0;
  std::string part_text;
  std::string crc;
  std::string hash;
  std::string compatible_crc;
  std::string compatible_hash;
};

}  // namespace zyl
