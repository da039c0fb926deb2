#pragma once

#include <string>

#include "sim/property_tree.h"
#include "sim/story.h"

namespace sim {

/// Stands for the process that draws the splash pictures. It runs from its construction on; "/sim/splash/running" set
/// to "0" ends it and "1" starts it again.
///
/// For each output n it sets "/xk_splash/<n>/ready" to "1" when it starts, and to "0" when it ends; it draws what
/// "/xk_splash/<n>/mode" says and publishes the last mode that it saw as "/sim/splash/<n>/drawn", "" when it does not
/// run. Loop thread only.
class splash_provider_t {
 public:
  /// The tree must not change once this object is gone.
  splash_provider_t(property_tree_t& tree, story_t& story, int output_count);

  splash_provider_t(const splash_provider_t&) = delete;
  splash_provider_t& operator=(const splash_provider_t&) = delete;
  splash_provider_t(splash_provider_t&&) = delete;
  splash_provider_t& operator=(splash_provider_t&&) = delete;
  ~splash_provider_t() = default;

 private:
  void run(bool wanted);
  void draw(int output, const std::string& mode);

  property_tree_t& tree;
  story_t& story;
  int output_count;
  bool running = false;
};

}  // namespace sim
