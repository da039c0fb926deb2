#include "sim/splash_provider.h"

namespace sim {
namespace {

std::string splash_path(int output, const char* name) { return "/xk_splash/" + std::to_string(output) + "/" + name; }

std::string drawn_path(int output) { return "/sim/splash/" + std::to_string(output) + "/drawn"; }

}  // namespace

splash_provider_t::splash_provider_t(property_tree_t& served_tree, story_t& told_story, int count)
    : tree(served_tree), story(told_story), output_count(count) {
  for (int output = 0; output < output_count; ++output) {
    tree.on_set(splash_path(output, "mode"), [this, output](const std::string& mode) { draw(output, mode); });
  }
  tree.on_set("/sim/splash/running", [this](const std::string& value) { run(value == "1"); });
  tree.publish("/sim/splash/running", "1");
  run(true);
}

void splash_provider_t::run(bool wanted) {
  if (running == wanted) {
    return;
  }
  running = wanted;
  story.tell("splash", running ? "starts" : "ends");
  for (int output = 0; output < output_count; ++output) {
    if (running) {
      draw(output, tree.value(splash_path(output, "mode")));
    } else {
      tree.publish(drawn_path(output), "");
    }
    tree.publish(splash_path(output, "ready"), running ? "1" : "0");
  }
}

void splash_provider_t::draw(int output, const std::string& mode) {
  if (!running) {
    return;
  }
  const std::string head = "output " + std::to_string(output) + ": ";
  if (mode == "graphic") {
    story.tell("splash", head + "draws graphic " + tree.value(splash_path(output, "graphic")));
  } else if (mode == "disable") {
    story.tell("splash", head + "stops drawing");
  } else if (!mode.empty()) {
    story.tell("splash", head + "draws " + mode);
  }
  tree.publish(drawn_path(output), mode);
}

}  // namespace sim
