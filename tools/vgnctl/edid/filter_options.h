#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "edid_lib/default_modes.h"
#include "edid_lib/tarn_filter_resolution.h"

namespace CLI {
class App;
}  // namespace CLI

namespace vgnctl {

/// The filter chain as a command line can change it. Starts as the chain that the daemon uses for its outputs.
struct filter_options_t {
  bool allow_interlaced = false;
  bool allow_non_square = false;
  std::string max{edid_lib::max_output_resolution};
  std::string min{edid_lib::min_output_resolution};
  uint32_t direction = 0;
  std::vector<std::string> unsupported;
};

/// Gives `command` the options of the chain, for which `options` has to live as long.
void add_filter_options(CLI::App& command, filter_options_t& options);

/// Whether the command line had one of them.
bool has_filter_options(const CLI::App& command);

/// The chain. Throws CLI::ValidationError, naming the option, for a mode text that is none.
edid_lib::tarn_filter_resolution_t filter_of(const filter_options_t& options);

}  // namespace vgnctl
