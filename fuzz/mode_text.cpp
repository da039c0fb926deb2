// Texts of modes, two of them with a line feed between: parsing, the texts made of a mode, and the look-ups. The whole
// is read as the text of a timing, too.
#include <cmath>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "edid_lib/timing_lookup.h"
#include "edid_lib/vid_resolution.h"
#include "fuzz/target.h"

namespace {

using edid_lib::no_timing_number;
using edid_lib::timing_type_t;
using edid_lib::vid_resolution_t;
using edid_lib::vid_timing_t;
using fuzz::require;

/// Nothing where a half of the size is no number, the one thing that is refused.
std::optional<vid_resolution_t> parse(std::string_view text) {
  try {
    return vid_resolution_t(text);
  } catch (const std::invalid_argument&) {
    return std::nullopt;
  } catch (const std::out_of_range&) {
    return std::nullopt;
  }
}

/// Whether a number of six digits comes back: the smallest ones do not.
bool is_stable(float number) { return number == 0 || std::isinf(number) || std::fabs(number) > 1e-37F; }

/// Reduced blanking is a word of its own, and the aspect behind it takes it back; so its text is not stable.
bool has_stable_text(const vid_resolution_t& mode) {
  return !mode.reduced_blanking && is_stable(mode.pixel_aspect_x) && is_stable(mode.pixel_aspect_y);
}

void check_texts(const vid_resolution_t& mode) {
  const auto parsed = parse(mode.key());
  require(parsed && *parsed == mode, "the key of a mode parses as that mode");
  require(parsed->interlaced == mode.interlaced, "and as interlaced as it is");
  require(!has_stable_text(mode) || parsed->key() == mode.key(), "the key of that mode is the same");
  const auto displayed = parse(mode.to_string());
  require(displayed && *displayed == mode, "the text for people parses as that mode");
  require(!mode.preferred || parse(mode.list_text())->preferred, "the text in a list tells what is preferred");
  require(mode.aspect_ratio().find(':') != std::string::npos, "an aspect ratio has two sides");
}

void check_lookups(const vid_resolution_t& mode) {
  const bool cta = edid_lib::is_cta(mode);
  const bool hdmi = edid_lib::is_hdmi(mode);
  const bool dmt = edid_lib::is_dmt(mode);
  const bool established = edid_lib::is_established(mode);
  require(cta == edid_lib::cta_timing(mode).known() && cta == (edid_lib::cta_vic(mode) != no_timing_number), "CTA");
  require(hdmi == edid_lib::hdmi_timing(mode).known() && hdmi == (edid_lib::hdmi_vic(mode) != no_timing_number),
          "HDMI");
  require(dmt == edid_lib::dmt_timing(mode).known(), "DMT");
  require(established == edid_lib::established_timing(mode).known(), "Established");
  const timing_type_t first = cta           ? timing_type_t::cta
                              : hdmi        ? timing_type_t::hdmi
                              : dmt         ? timing_type_t::dmt
                              : established ? timing_type_t::established
                                            : timing_type_t::undefined;
  require(edid_lib::classify(mode) == first, "the first family that knows a mode tells its type");
  const auto resolved = edid_lib::resolve_timing(mode);
  require(resolved.type == first && resolved.timing.known() == (first != timing_type_t::undefined), "and its timing");
}

void check_rate(const vid_resolution_t& mode) {
  const float rate = mode.nominal_fps();
  require(rate == -1 || (rate >= 23.98F && rate <= 240), "a nominal rate is a standard one");
  const vid_resolution_t alternative = edid_lib::rate_alternative(mode);
  require(alternative.nominal_fps() <= rate, "the alternative to a rate is the slower one");
  require(edid_lib::rate_alternative(alternative) == alternative, "which has none itself");
}

void check_mode(const vid_resolution_t& mode) {
  check_rate(mode);
  check_lookups(mode);
  // What is no number has a rate that no text tells.
  if (!std::isnan(mode.fps) && !std::isnan(mode.pixel_aspect_x) && !std::isnan(mode.pixel_aspect_y)) {
    check_texts(mode);
  }
}

void check_order(const vid_resolution_t& a, const vid_resolution_t& b) {
  require(((a <=> b) < 0) == ((b <=> a) > 0), "the order has one direction");
  require(((a <=> b) == 0) == (a == b), "equal modes are those that no order parts");
}

void check_timing(const std::string& text) {
  vid_timing_t timing;
  std::istringstream(text) >> timing;
  std::stringstream written;
  written << timing;
  vid_timing_t again;
  written >> again;
  require(again == timing, "a timing that is written and read is the same");
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::size_t end = std::min(text.find('\n'), text.size());
  const auto first = parse(text.substr(0, end));
  const auto second = parse(text.substr(std::min(end + 1, text.size())));
  if (first) {
    check_mode(*first);
  }
  if (first && second) {
    check_order(*first, *second);
  }
  check_timing(std::string(text));
  return 0;
}
