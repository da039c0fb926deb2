#pragma once

#include <map>
#include <string>

#include "sim/brightness_setting.h"
#include "sim/key_device.h"
#include "sim/ktm5030.h"
#include "sim/led_panel.h"
#include "sim/log_collector.h"
#include "sim/model.h"
#include "sim/property_service.h"
#include "sim/property_tree.h"
#include "sim/reset_script.h"
#include "sim/runtime_engine.h"
#include "sim/screen.h"
#include "sim/splash_provider.h"
#include "sim/status_files.h"
#include "sim/story.h"
#include "sim/streamer_driver.h"
#include "sim/testbed.h"
#include "sim/video_engine.h"
#include "zyl/event_loop.h"

namespace sim {

/// The simulated appliance: everything that the daemon meets outside itself, on one loop. Owned and run by one thread.
class appliance_t {
 public:
  /// Serves everything, and sets "/sim/ready" to "1". The story goes to `story_file`, "-" being standard output; the
  /// system's log to "/tmp/vgn-appliance.log". Throws `std::system_error` if something cannot be served.
  appliance_t(const model_t& model, const std::string& story_file);
  ~appliance_t();

  appliance_t(const appliance_t&) = delete;
  appliance_t& operator=(const appliance_t&) = delete;
  appliance_t(appliance_t&&) = delete;
  appliance_t& operator=(appliance_t&&) = delete;

  /// Runs until `stop`.
  void run() { loop.run(); }

  /// Any thread.
  void stop() { loop.stop(); }

  event_base* base() const { return loop.base(); }

  /// The variables that a program needs to see the appliance's devices; also below "/sim/environment/", and as lines
  /// NAME=VALUE in "/run/vgn-appliance.env", where `sim/sandbox enter` finds them.
  std::map<std::string, std::string> daemon_environment() const { return testbed.environment(); }

 private:
  zyl::event_loop_t loop;
  property_tree_t tree;
  story_t story;
  // Binds "/dev/log", so it comes before the testbed, behind which the real /dev is out of reach.
  log_collector_t log;
  testbed_t testbed;
  property_service_t properties;
  streamer_driver_t driver;
  video_engine_t engine;
  splash_provider_t splash;
  status_files_t status_files;
  ktm5030_t ktm5030;
  screen_t screen;
  led_panel_t leds;
  key_device_t keys;
  brightness_setting_t brightness_setting;
  reset_script_t reset_script;
  runtime_engine_t runtime_engine;
};

}  // namespace sim
