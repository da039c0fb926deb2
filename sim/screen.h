#pragma once

#include <string>

#include "sim/property_tree.h"
#include "sim/story.h"

namespace sim {

/// The person in front of the displays: keeps "/sim/hdmi/<n>/shows" of every output as what the driver, the engine and
/// the splash provider publish adds up to.
///
///   "nothing connected"                          no display
///   "dark"                                       a display without a picture
///   "splash boot_splash_screen at 1920x1080"     what the splash provider draws, in the size of the raw output
///
/// For a splash to be seen, the output needs a timing and the raw injection input as its source, the engine a raw
/// output that is fed, a decoder for that splash, and the provider something to draw. The story tells each change as
/// "appliance". Loop thread only.
class screen_t {
 public:
  /// The tree must not change once this object is gone.
  screen_t(property_tree_t& tree, story_t& story, int output_count);

  screen_t(const screen_t&) = delete;
  screen_t& operator=(const screen_t&) = delete;
  screen_t(screen_t&&) = delete;
  screen_t& operator=(screen_t&&) = delete;
  ~screen_t() = default;

 private:
  void look(int output);
  std::string seen_on(int output) const;
  std::string splash_on(int output) const;
  bool has_splash_decoder(int output) const;

  property_tree_t& tree;
  story_t& story;
  int output_count;
};

}  // namespace sim
