#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sim/flash_watch.h"
#include "sim/led_class.h"
#include "sim/light.h"

namespace sim {

/// The lamp of a front panel, as the driver behind its attribute files. Times are milliseconds of one clock.
class lamp_t {
 public:
  lamp_t() = default;
  virtual ~lamp_t() = default;
  lamp_t(const lamp_t&) = delete;
  lamp_t& operator=(const lamp_t&) = delete;
  lamp_t(lamp_t&&) = delete;
  lamp_t& operator=(lamp_t&&) = delete;

  /// The paths of its files.
  virtual std::vector<std::string> files() const = 0;

  /// Somebody has written `text` to one of its files.
  virtual written_e write(const std::string& file, std::string_view text, int64_t now_ms) = 0;

  virtual look_t look(int64_t now_ms) const = 0;

  /// When the look will be another one without a write; nothing if it stays.
  virtual std::optional<int64_t> changes_at_ms(int64_t now_ms) const = 0;
};

/// A blue and a green LED in one lamp, each with the kernel's pattern trigger:
/// "/sys/class/leds/<name>/{trigger,pattern,repeat,brightness}".
class rgb_lamp_t : public lamp_t {
 public:
  std::vector<std::string> files() const override;
  written_e write(const std::string& file, std::string_view text, int64_t now_ms) override;
  look_t look(int64_t now_ms) const override;
  std::optional<int64_t> changes_at_ms(int64_t now_ms) const override;

 private:
  led_class_t blue;
  led_class_t green;
};

/// A white lamp behind a pulse-width modulator: "/proc/tarn/pwm-0/{out_en,period,value}". It is lit while "out_en" is
/// not 0, as brightly as that says, once "period" and "value" have each been given their two numbers. Its programs let
/// it blink by writing.
class pwm_lamp_t : public lamp_t {
 public:
  std::vector<std::string> files() const override;
  written_e write(const std::string& file, std::string_view text, int64_t now_ms) override;
  look_t look(int64_t now_ms) const override;
  std::optional<int64_t> changes_at_ms(int64_t now_ms) const override;

 private:
  bool apply(const std::string& file, std::string_view text);

  bool has_period = false;
  bool has_value = false;
  uint32_t level = 0;
  flash_watch_t watch;
};

/// A white lamp of one file, "/sys/class/leds/id_led/brightness". Its programs let it blink by writing.
class plain_lamp_t : public lamp_t {
 public:
  std::vector<std::string> files() const override;
  written_e write(const std::string& file, std::string_view text, int64_t now_ms) override;
  look_t look(int64_t now_ms) const override;
  std::optional<int64_t> changes_at_ms(int64_t now_ms) const override;

 private:
  flash_watch_t watch;
};

/// The lamp that the front of a model has.
std::unique_ptr<lamp_t> make_lamp(int model_id);

}  // namespace sim
