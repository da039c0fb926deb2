#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zyl {

/// A row of the model table.
struct platform_model_t {
  std::string_view part;          ///< the part number as the property bus tells it
  std::string_view display_name;  ///< for people
  uint32_t id;                    ///< 1 upwards in the order of rows
  uint32_t family;                ///< first class value; a value of the platform words
  uint32_t variant;               ///< second class value
  uint32_t further[2];            ///< 0 in most rows
};

/// A word of the platform property and its value.
struct platform_word_t {
  std::string_view word;
  uint32_t value;
};

using cpu_names_t = std::vector<std::string>;

/// The CPUs of a model for each kind of work; an empty set is one that the model does not give.
struct platform_cpus_t {
  uint32_t id;
  cpu_names_t control;
  cpu_names_t network;
  cpu_names_t processing;
};

/// The tables of the product range. A device family of its own replaces platform_tables.cpp.
std::span<const platform_model_t> platform_models();
std::span<const platform_word_t> platform_words();
std::span<const platform_cpus_t> platform_cpus();

}  // namespace zyl
