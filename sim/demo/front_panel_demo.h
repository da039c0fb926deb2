#pragma once

#include <string>

#include "sim/demo/demo.h"
#include "sim/demo/due.h"
#include "sim/remote/front_panel.h"

namespace sim {

/// The keys and the lamp: the id key, a design that comes and goes, the factory reset key. The reset key is held for
/// the five seconds that it takes.
class front_panel_demo_t : public demo_t {
 public:
  /// Throws as `demo_t` does.
  explicit front_panel_demo_t(const options_t& options);

 protected:
  std::string zero() const override { return "the first press of a key"; }
  void play() override;
  void print_end() override;
  std::string invitation() const override { return "press a key, or change what the lamp shows"; }
  steering_t steering() override;

 private:
  void expect_start();
  void use_id_key();
  void run_design();
  void choose_brightness();
  void lose_design();
  void hold_reset_key_briefly();
  void hold_reset_key();

  void expect_lamp(const led_t& due, const std::string& what);
  /// Nothing where the lamp shows no status: it is dark anyway, which says nothing.
  void expect_status_lamp(const led_t& due, const std::string& what);
  void expect_id_mode(const char* mode);
  void expect_screen(const char* screen);

  due_lamp_t due;
  front_panel_t panel;
};

}  // namespace sim
