#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "sim/attribute_files.h"
#include "sim/lamp.h"
#include "sim/property_tree.h"
#include "sim/story.h"
#include "sim/testbed.h"
#include "zyl/sigc_timer.h"

namespace sim {

/// The lamp on the front of a model: its files in the testbed, and what a person sees of it. Loop thread only.
///
/// Properties:
///   "/sim/led/colour"      "off", "blue", "green", "white", or "cyan" for blue and green at once
///   "/sim/led/brightness"  0 to 255, in the lit phase
///   "/sim/led/blink"       "steady", or the period in ms, on and off together
///   "/sim/led/looks"       all in one: "off", "blue at 15, steady", "green at 15, blinks every 1000 ms"
///   "/sim/led/changes"     how many writes have made the light another one
///   "/sim/led/refused"     how many writes a driver would have failed: a pattern without the trigger, a level that is
///                          no number and such; not the newline that clears a pattern, also where there can be none
///   "/sim/led/written/..." the last text that each file was given, as in "/sim/led/written/proc/tarn/pwm-0/period"
///   "/sim/led/driver"      "present"; set it to "absent" to take the files away, and to "present" to bring them back:
///                          in both cases the lamp is dark
///
/// `lamp_t` tells how the lamps of the models work, `flash_watch_t` how blinking is told that programs do by writing.
/// "/sim/led/looks" is published last: who waits for it finds the others up to date.
class led_panel_t {
 public:
  /// All arguments by reference must outlive this object; the tree must not change once it is gone. Throws
  /// `std::system_error` if the files cannot be made.
  led_panel_t(event_base* base, const testbed_t& testbed, property_tree_t& properties, story_t& story, int model_id);

  led_panel_t(const led_panel_t&) = delete;
  led_panel_t& operator=(const led_panel_t&) = delete;
  led_panel_t(led_panel_t&&) = delete;
  led_panel_t& operator=(led_panel_t&&) = delete;
  ~led_panel_t() = default;

 private:
  void set_driver(const std::string& wanted);
  void renew_lamp();
  void take(const std::string& file, const std::string& text);
  void look();
  void tell(const look_t& look);

  property_tree_t& tree;
  story_t& story;
  int model;
  std::unique_ptr<lamp_t> lamp;
  attribute_files_t files;
  zyl::sigc_timer_t look_again;
  look_t told{"off", {}};
  uint64_t changes = 0;
  uint64_t refused = 0;
  bool has_driver = true;
};

}  // namespace sim
