#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sim/demo/demo.h"
#include "sim/demo/due.h"

namespace sim {

/// A display is plugged in, unplugged and plugged in again.
class display_demo_t : public demo_t {
 public:
  /// `edid` is the display's. Throws as `demo_t` does.
  display_demo_t(const options_t& options, std::vector<uint8_t> edid);

 protected:
  std::string zero() const override { return "the first plug"; }
  void play() override;
  void print_end() override;
  std::string invitation() const override { return "plug a display, or unplug it"; }
  steering_t steering() override;

 private:
  void expect_start();
  void plug(std::size_t log_size);
  void expect_mode(const due_mode_t& due, int64_t since_us, std::size_t log_size);
  void expect_splash(const due_mode_t& due);
  void expect_nothing_usable(std::size_t log_size);
  void unplug();

  std::vector<uint8_t> edid;
  std::optional<due_mode_t> due;
  int splash_count;
  int output_count;
};

}  // namespace sim
