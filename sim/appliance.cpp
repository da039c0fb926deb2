#include "sim/appliance.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "sim/identity.h"

namespace sim {
namespace {

constexpr const char* environment_file = "/run/vgn-appliance.env";

}  // namespace

appliance_t::appliance_t(const model_t& model, const std::string& story_file)
    : story(story_file),
      log(loop.base(), tree, story, "/tmp/vgn-appliance.log"),
      properties(loop.base(), tree, story),
      driver(loop.base(), testbed, tree, story, static_cast<std::size_t>(model.output_count)),
      engine(loop.base(), tree, story),
      splash(tree, story, model.output_count),
      status_files(loop.base(), testbed.root(), tree, story),
      ktm5030(loop.base(), testbed, tree, story, model.id == 105),
      screen(tree, story, model.output_count),
      leds(loop.base(), testbed, tree, story, model.id),
      keys(loop.base(), testbed, tree, story),
      brightness_setting(loop.base(), tree, story),
      reset_script(loop.base(), tree, story),
      runtime_engine(loop.base(), testbed, tree, story) {
  publish_identity(tree, model);
  std::ofstream variables(environment_file);
  for (const auto& [name, value] : daemon_environment()) {
    tree.publish("/sim/environment/" + name, value);
    variables << name << '=' << value << '\n';
  }
  variables.close();
  if (!variables) {
    throw std::system_error(errno, std::generic_category(), environment_file);
  }
  story.tell("appliance", "model " + std::to_string(model.id) + " is up");
  tree.publish("/sim/ready", "1");
}

appliance_t::~appliance_t() {
  std::error_code ignored;
  std::filesystem::remove(environment_file, ignored);
}

}  // namespace sim
