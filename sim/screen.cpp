#include "sim/screen.h"

#include <algorithm>
#include <sstream>
#include <string_view>

namespace sim {
namespace {

std::string hdmi_path(int output, const char* name) { return "/sim/hdmi/" + std::to_string(output) + "/" + name; }

/// Whether what is seen may depend on the property.
bool is_watched(std::string_view path) {
  return (path.starts_with("/sim/hdmi/") && !path.ends_with("/shows")) || path.starts_with("/sim/engine/") ||
         path.starts_with("/sim/splash/");
}

}  // namespace

screen_t::screen_t(property_tree_t& watched_tree, story_t& told_story, int count)
    : tree(watched_tree), story(told_story), output_count(count) {
  const auto look_at_all = [this] {
    for (int output = 0; output < output_count; ++output) {
      look(output);
    }
  };
  tree.on_change([look_at_all](const std::string& path, const std::string&) {
    if (is_watched(path)) {
      look_at_all();
    }
  });
  look_at_all();
}

void screen_t::look(int output) {
  const std::string path = hdmi_path(output, "shows");
  const std::string seen = seen_on(output);
  if (tree.value(path) != seen) {
    story.tell("appliance", "output " + std::to_string(output) + " shows " + seen);
    tree.publish(path, seen);
  }
}

std::string screen_t::seen_on(int output) const {
  if (tree.value(hdmi_path(output, "connected")) != "1") {
    return "nothing connected";
  }
  const bool driven = !tree.value(hdmi_path(output, "timing")).empty() &&
                      tree.value(hdmi_path(output, "source")).find("inject") != std::string::npos;
  const std::string splash = driven ? splash_on(output) : "";
  return splash.empty() ? "dark" : splash;
}

std::string screen_t::splash_on(int output) const {
  int decoder = -1;
  int width = 0;
  int height = 0;
  std::istringstream raw_out(tree.value("/sim/engine/raw_out/" + std::to_string(output)));
  raw_out >> decoder >> width >> height;
  const std::string drawn = tree.value("/sim/splash/" + std::to_string(output) + "/drawn");
  // Before it is given a mode, a client may feed a raw output of 0 by 0.
  const bool fed = raw_out && decoder >= 0 && width > 0 && height > 0;
  const bool drawing = !drawn.empty() && drawn != "disable";
  if (!fed || !drawing || !has_splash_decoder(output)) {
    return "";
  }
  return "splash " + drawn + " at " + std::to_string(width) + "x" + std::to_string(height);
}

bool screen_t::has_splash_decoder(int output) const {
  const std::string uri = "videng-pnl8-dmabuf" + std::to_string(output);
  const auto decoders = tree.below("/sim/engine/decoder");
  return tree.value("/sim/engine/running") != "0" &&
         std::any_of(decoders.begin(), decoders.end(), [&uri](const auto& decoder) { return decoder.second == uri; });
}

}  // namespace sim
