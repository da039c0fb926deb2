#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "sim/appliance.h"
#include "sim/remote/child_process.h"
#include "zyl/event_ptr.h"
#include "zyl/log/setup_logging.h"

namespace {

struct options_t {
  int model = 106;
  std::string story_file = "-";
  std::vector<std::string> command;
};

/// Stops the appliance at SIGTERM and SIGINT, and when the child ends.
class ending_t {
 public:
  ending_t(sim::appliance_t& ended, sim::child_process_t* child)
      : appliance(ended),
        terminated(evsignal_new(ended.base(), SIGTERM, on_end, this)),
        interrupted(evsignal_new(ended.base(), SIGINT, on_end, this)) {
    event_add(terminated.get(), nullptr);
    event_add(interrupted.get(), nullptr);
    if (child != nullptr) {
      child_ended.reset(event_new(ended.base(), child->descriptor(), EV_READ, on_end, this));
      event_add(child_ended.get(), nullptr);
    }
  }

 private:
  static void on_end(evutil_socket_t /*fd*/, short /*events*/, void* self) {
    static_cast<ending_t*>(self)->appliance.stop();
  }

  sim::appliance_t& appliance;
  zyl::event_ptr_t terminated;
  zyl::event_ptr_t interrupted;
  zyl::event_ptr_t child_ended;
};

/// The status of the command, or 0 without one.
int serve(const options_t& options, const sim::model_t& model) {
  sim::appliance_t appliance(model, options.story_file);
  std::unique_ptr<sim::child_process_t> child;
  if (!options.command.empty()) {
    child = std::make_unique<sim::child_process_t>(options.command,
                                                   sim::child_process_t::options_t{appliance.daemon_environment(), ""});
  }
  {
    const ending_t ending(appliance, child.get());
    appliance.run();
  }
  // The command goes first: it may have devices open that go with the appliance.
  return child ? child->stop(SIGTERM, std::chrono::seconds(5)) : EXIT_SUCCESS;
}

/// The appliance takes "/dev/log" and other paths of the system for itself.
void require_sandbox() {
  if (std::getenv("VGN_SANDBOX") == nullptr) {  // NOLINT(concurrency-mt-unsafe): there is one thread yet
    throw std::runtime_error("this must run in a sandbox: sim/sandbox run --name NAME --build BUILD -- vgn-appliance");
  }
}

void add_options(CLI::App& app, options_t& options) {
  app.add_option("--model", options.model, "Endpoint model: 85, 100, 105, 106 or 137")->capture_default_str();
  app.add_option("--story", options.story_file, "File for the story of the run, - for standard output")
      ->capture_default_str();
  app.add_option("COMMAND", options.command,
                 "Program to run on the appliance, after --; the appliance ends with it and with its status. "
                 "Without one it serves until SIGTERM or SIGINT.");
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app(
      "The simulated appliance: property service, video engine, streamer driver, splash provider, front panel and "
      "log.");
  options_t options;
  add_options(app, options);
  CLI11_PARSE(app, argc, argv);
  const auto model = sim::find_model(options.model);
  if (!model) {
    std::cerr << "vgn-appliance: there is no model " << options.model << '\n';
    return 2;
  }
  try {
    require_sandbox();
    // Its own log must not end up in the log that it collects.
    zyl::setup_logging("vgn-appliance", false, "stdout_color_sink_mt");
    return serve(options, *model);
  } catch (const std::exception& error) {
    std::cerr << "vgn-appliance: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
