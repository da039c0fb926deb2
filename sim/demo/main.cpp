#include <unistd.h>

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "sim/demo/display_demo.h"
#include "sim/demo/front_panel_demo.h"
#include "sim/model.h"
#include "sim/remote/edids.h"
#include "zyl/log/setup_logging.h"

namespace {

constexpr int wrong_use = 2;

struct options_t {
  std::string edid_file;
  int model = 106;
  bool front_panel = false;
  bool keep_running = false;
  bool everything = false;
};

void add_options(CLI::App& app, options_t& options) {
  auto* edid =
      app.add_option("--edid", options.edid_file, "File with the EDID of the display to plug; a 4K display without it");
  app.add_flag("--front-panel", options.front_panel, "Tell the story of the keys and the lamp, not of a display")
      ->excludes(edid);
  app.add_option("--model", options.model, "Endpoint model: 85, 100, 105, 106 or 137")->capture_default_str();
  app.add_flag("--keep-running", options.keep_running, "Leave the appliance up and say how to steer it");
  app.add_flag("--everything", options.everything, "Tell every line of the story, not only the chief ones");
}

/// Nothing if the file cannot be read.
std::optional<std::vector<uint8_t>> bytes_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file.is_open() || std::filesystem::is_directory(path)) {
    return std::nullopt;
  }
  return std::vector<uint8_t>{std::istreambuf_iterator<char>(file), {}};
}

int complain(const std::string& what) {
  std::cerr << "vgn-demo: " << what << '\n';
  return wrong_use;
}

/// The play that is asked for; null if there is no EDID to play with.
std::unique_ptr<sim::demo_t> make_demo(const options_t& options) {
  const sim::demo_t::options_t shared{options.model, options.everything, isatty(STDOUT_FILENO) != 0};
  if (options.front_panel) {
    return std::make_unique<sim::front_panel_demo_t>(shared);
  }
  const auto edid = options.edid_file.empty() ? sim::uhd_display_edid() : bytes_of(options.edid_file);
  return edid ? std::make_unique<sim::display_demo_t>(shared, *edid) : nullptr;
}

int run(const options_t& options) {
  if (!sim::find_model(options.model)) {
    return complain("there is no model " + std::to_string(options.model));
  }
  const auto demo = make_demo(options);
  if (!demo) {
    return complain("cannot read " + options.edid_file);
  }
  const bool all_came = demo->run();
  if (options.keep_running) {
    demo->keep_running();
  }
  return all_came ? EXIT_SUCCESS : EXIT_FAILURE;
}

/// Blocked from the start, so that every thread has them blocked, for who waits for them.
void block_end_signals() {
  sigset_t ends;
  sigemptyset(&ends);
  sigaddset(&ends, SIGINT);
  sigaddset(&ends, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &ends, nullptr);
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Runs the daemon on a simulated appliance, plugs a display or presses keys, and tells what happens.");
  options_t options;
  add_options(app, options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? EXIT_SUCCESS : wrong_use;
  }
  if (options.keep_running) {
    block_end_signals();
  }
  try {
    zyl::setup_logging("vgn-demo", false, "stdout_color_sink_mt");
    return run(options);
  } catch (const std::exception& error) {
    std::cerr << "vgn-demo: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
