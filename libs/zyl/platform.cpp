#include "zyl/platform.h"

#include <atomic>
#include <cstdlib>
#include <unordered_map>

#include "zyl/log/log_base.h"
#include "zyl/log/module_logger.h"
#include "zyl/platform_files.h"
#include "zyl/property_client.h"

namespace zyl {
namespace {

constexpr int read_attempts = 2;
constexpr int read_timeout_ms = 1000;

std::atomic<const platform_t*> installed_platform = nullptr;

// The platform is read before `main`, perhaps before this file's own statics are there: so the logger and the tables
// are made at their first use. Each look-up applies the default level: there is one, and no later than before `main`,
// since the level file comes after.
spdlog::logger& logger() {
  static auto& found = module_logger("zyl_platform");
  return found;
}
[[maybe_unused]] const auto& early_logger = logger();

uint32_t architecture_of(std::string_view word) {
  static const std::unordered_map<std::string_view, uint32_t> values{
      {"x86_64", 1}, {"powerpc", 2}, {"arm", 3}, {"a8_arm", 4}, {"aarch64", 6}};
  const auto entry = values.find(word);
  return entry != values.end() ? entry->second : 0;
}

uint32_t platform_of(std::string_view word) {
  static const auto values = [] {
    std::unordered_map<std::string_view, uint32_t> map;
    for (const platform_word_t& row : platform_words()) {
      map.emplace(row.word, row.value);
    }
    return map;
  }();
  const auto entry = values.find(word);
  return entry != values.end() ? entry->second : 0;
}

const platform_model_t* model_with(uint32_t id) {
  static const auto models = [] {
    std::unordered_map<uint32_t, const platform_model_t*> map;
    for (const platform_model_t& row : platform_models()) {
      map.emplace(row.id, &row);
    }
    return map;
  }();
  const auto entry = models.find(id);
  return entry != models.end() ? entry->second : nullptr;
}

const platform_cpus_t* cpus_with(uint32_t id) {
  static const auto sets = [] {
    std::unordered_map<uint32_t, const platform_cpus_t*> map;
    for (const platform_cpus_t& row : platform_cpus()) {
      map.emplace(row.id, &row);
    }
    return map;
  }();
  const auto entry = sets.find(id);
  return entry != sets.end() ? entry->second : nullptr;
}

const cpu_names_t& cpus_for(uint32_t id, cpu_names_t platform_cpus_t::*work, const char* name,
                            const cpu_names_t& fallback) {
  static const cpu_names_t none;
  if (id == 0) {
    return none;
  }
  if (const platform_cpus_t* row = cpus_with(id)) {
    return row->*work;
  }
  log_base_s(logger(), spdlog::level::warn) << "Table lookup failed for part number " << platform_t::display_name(id)
                                            << ". Using default " << name << " cpu vector";
  return fallback;
}

std::optional<platform_t> read_from_bus() {
  property_client_t client;
  client.connect();
  try {
    return platform_t([&client](const std::string& path) -> std::optional<std::string> {
      std::string value;
      return client.read(path, value, read_timeout_ms) ? std::optional(value) : std::nullopt;
    });
  } catch (const platform_unreadable_exception_t&) {
    return std::nullopt;
  }
}

}  // namespace

platform_t::platform_t(const reader_t& read) {
  const auto config = [&read](const std::string& name) {
    const std::string path = "/sys/config/" + name;
    auto value = read(path);
    return value ? std::move(*value) : throw platform_unreadable_exception_t(path);
  };
  architecture_value = architecture_of(config("arch"));
  platform_value = platform_of(config("platform"));
  part_text = config("part_number");
  part_id = part_id_of(part_text);
  crc = config("fw_server_crc");
  hash = config("fw_server_hash");
  compatible_crc = config("fw_server_crc_compat");
  compatible_hash = config("fw_server_hash_compat");
}

platform_t platform_t::from_bus() {
  for (int attempt = 0; attempt < read_attempts; ++attempt) {
    if (auto platform = read_from_bus()) {
      return *std::move(platform);
    }
  }
  log_base_s(logger(), spdlog::level::err) << "platform_t unable to read platform information from property engine.";
  std::exit(-1);  // NOLINT(concurrency-mt-unsafe): before main there is one thread
}

void platform_t::install(const platform_t* installed) { installed_platform = installed; }

const platform_t& platform_t::get() {
  static const platform_t unknown;
  const platform_t* installed = installed_platform;
  return installed != nullptr ? *installed : unknown;
}

uint32_t platform_t::part_id_of(std::string_view part_number) {
  static const auto ids = [] {
    std::unordered_map<std::string_view, uint32_t> map;
    for (const platform_model_t& row : platform_models()) {
      map.emplace(row.part, row.id);
    }
    return map;
  }();
  const auto entry = ids.find(part_number);
  return entry != ids.end() ? entry->second : 0;
}

uint32_t platform_t::family(uint32_t id) {
  const platform_model_t* model = model_with(id);
  return model != nullptr ? model->family : 0;
}

uint32_t platform_t::variant(uint32_t id) {
  const platform_model_t* model = model_with(id);
  return model != nullptr ? model->variant : 0;
}

std::string_view platform_t::display_name(uint32_t id) {
  const platform_model_t* model = model_with(id);
  return model != nullptr ? model->display_name : "Unknown";
}

const cpu_names_t& platform_t::network_cpus(uint32_t id) {
  static const cpu_names_t fallback;
  return cpus_for(id, &platform_cpus_t::network, "network", fallback);
}

const cpu_names_t& platform_t::control_cpus(uint32_t id) {
  static const cpu_names_t fallback{"cpu0"};
  return cpus_for(id, &platform_cpus_t::control, "control", fallback);
}

const cpu_names_t& platform_t::processing_cpus(uint32_t id) {
  static const cpu_names_t fallback{"cpu1", "cpu2", "cpu3"};
  return cpus_for(id, &platform_cpus_t::processing, "processing", fallback);
}

int platform_t::board_id() {
  static const int id = number_in_first_line(
      "/sys/devices/pci0000:00/0000:00:19.0/pxa2xx-spi.8/spi_master/spi1/spi-ZYL0002:00/board_id", 1);
  return id;
}

bool platform_t::is_hypervisor() { return any_line_contains("/proc/cpuinfo", "hypervisor"); }

bool platform_t::is_container() {
  return any_line_contains("/proc/1/cgroup", "docker") || any_line_contains("/proc/self/mountinfo", "docker");
}

}  // namespace zyl
