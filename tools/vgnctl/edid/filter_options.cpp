#include "tools/vgnctl/edid/filter_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "tools/vgnctl/edid/mode_text.h"

namespace vgnctl {
namespace {

constexpr const char* group_name = "Chain";

edid_lib::vid_resolution_t mode_for(const char* option, const std::string& text) {
  const parsed_mode_t parsed = parse_mode(text);
  if (!parsed.mode) {
    throw CLI::ValidationError(option, '"' + text + "\" is no mode");
  }
  return *parsed.mode;
}

}  // namespace

void add_filter_options(CLI::App& command, filter_options_t& options) {
  command.add_flag("--allow-interlaced", options.allow_interlaced, "Let interlaced modes pass")->group(group_name);
  command.add_flag("--allow-non-square", options.allow_non_square, "Let pixels pass that are not square")
      ->group(group_name);
  command.add_option("--max", options.max, "The greatest mode that passes")
      ->capture_default_str()
      ->type_name("MODE")
      ->group(group_name);
  command.add_option("--min", options.min, "The least mode that passes")
      ->capture_default_str()
      ->type_name("MODE")
      ->group(group_name);
  command.add_option("--direction", options.direction, "For 0 neither, 1 input, 2 output hardware")
      ->capture_default_str()
      ->check(CLI::Validator(CLI::Range(0, 2)).description(""))
      ->type_name("N")
      ->group(group_name);
  command.add_option("--unsupported", options.unsupported, "Refused with --direction 2; more than once")
      ->allow_extra_args(false)
      ->type_name("MODE")
      ->group(group_name);
}

bool has_filter_options(const CLI::App& command) {
  const auto options = command.get_options();
  return std::any_of(options.begin(), options.end(), [](const CLI::Option* option) {
    return option->get_group() == group_name && option->count() != 0;
  });
}

edid_lib::tarn_filter_resolution_t filter_of(const filter_options_t& options) {
  edid_lib::tarn_filter_resolution_t filter;
  filter.allow_interlaced = options.allow_interlaced;
  filter.allow_non_square = options.allow_non_square;
  filter.max_resolution = mode_for("--max", options.max);
  filter.min_resolution = mode_for("--min", options.min);
  filter.direction = static_cast<edid_lib::filter_direction_t>(options.direction);
  for (const std::string& text : options.unsupported) {
    filter.unsupported.push_back(mode_for("--unsupported", text));
  }
  return filter;
}

}  // namespace vgnctl
