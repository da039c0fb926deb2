#include "sim/led_panel.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "zyl/clock.h"

namespace sim {
namespace {

/// Whether a person would call it the same light: periods that are measured differ a little each time.
bool looks_alike(const look_t& a, const look_t& b) {
  const int64_t difference = std::abs(int64_t{a.light.period_ms} - int64_t{b.light.period_ms});
  const bool both_blink = a.light.period_ms != 0 && b.light.period_ms != 0;
  const bool same_pace = both_blink ? difference < a.light.period_ms / 4 : difference == 0;
  return colour_text(a) == colour_text(b) && a.light.brightness == b.light.brightness && same_pace;
}

/// A newline clears a pattern to be sure, also where there can be none: on an appliance there is no such file then.
bool only_clears(const std::string& file, const std::string& text) {
  return file.ends_with("/pattern") && text == "\n";
}

}  // namespace

led_panel_t::led_panel_t(event_base* base, const testbed_t& testbed, property_tree_t& properties, story_t& told_story,
                         int model_id)
    : tree(properties),
      story(told_story),
      model(model_id),
      lamp(make_lamp(model)),
      files(base, testbed.root(), [this](const std::string& file, const std::string& text) { take(file, text); }),
      look_again(base, -1, true) {
  look_again.expired.connect([this] { look(); });
  tree.on_set("/sim/led/driver", [this](const std::string& wanted) { set_driver(wanted); });
  renew_lamp();
  tree.publish("/sim/led/driver", "present");
  tree.publish("/sim/led/changes", "0");
  tree.publish("/sim/led/refused", "0");
}

void led_panel_t::set_driver(const std::string& wanted) {
  if (wanted == "present" || wanted == "absent") {
    has_driver = wanted == "present";
    renew_lamp();
  } else {
    story.tell("panel", "LED driver cannot be \"", {wanted, "\""});
    tree.publish("/sim/led/driver", has_driver ? "present" : "absent");
  }
}

// A driver that goes or comes leaves the lamp dark.
void led_panel_t::renew_lamp() {
  for (const auto& file : lamp->files()) {
    files.remove(file);
  }
  lamp = make_lamp(model);
  if (has_driver) {
    for (const auto& file : lamp->files()) {
      files.add(file);
    }
  }
  look();
}

void led_panel_t::take(const std::string& file, const std::string& text) {
  tree.publish("/sim/led/written" + file, text);
  const written_e result = lamp->write(file, text, zyl::now_ms());
  const bool is_refused = result == written_e::refused || result == written_e::refused_but_changed;
  if (is_refused && !only_clears(file, text)) {
    story.tell("panel", file, {" refuses \"", text, "\""});
    tree.publish("/sim/led/refused", std::to_string(++refused));
  }
  if (result == written_e::changed || result == written_e::refused_but_changed) {
    tree.publish("/sim/led/changes", std::to_string(++changes));
  }
  look();
}

void led_panel_t::look() {
  const int64_t now_ms = zyl::now_ms();
  const look_t seen = lamp->look(now_ms);
  tell(seen);
  if (looks_text(seen) != tree.value("/sim/led/looks")) {
    tree.publish("/sim/led/colour", colour_text(seen));
    tree.publish("/sim/led/brightness", std::to_string(seen.light.brightness));
    tree.publish("/sim/led/blink", blink_text(seen.light));
    tree.publish("/sim/led/looks", looks_text(seen));
  }
  look_again.cancel();
  if (const auto next_ms = lamp->changes_at_ms(now_ms)) {
    look_again.set_period(
        static_cast<int32_t>(std::clamp<int64_t>(*next_ms - now_ms + 1, 1, std::numeric_limits<int32_t>::max())));
    look_again.arm();
  }
}

void led_panel_t::tell(const look_t& seen) {
  if (!looks_alike(told, seen)) {
    story.tell("panel", "light: ", {looks_text(seen)});
    told = seen;
  }
}

}  // namespace sim
