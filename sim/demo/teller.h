#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>

#include "sim/remote/story_reader.h"

namespace sim {

/// Picks from a story what is worth telling of the daemon's work, and finds short words for it. One thread.
///
/// Told once as a whole: the identity that the daemon reads. Told as the rest of the system's: properties that the demo
/// sets. Not told: what the demo reads and watches in order to see, reading a property that is watched, splash
/// properties that are emptied, and of the daemon's own log all but its decisions about displays and modes.
class teller_t {
 public:
  /// `everything` tells every line as it is.
  explicit teller_t(bool everything = false) : tells_everything(everything) {}

  /// The line to tell; nothing if it is not worth it.
  std::optional<story_line_t> tell(const story_line_t& line);

 private:
  std::optional<story_line_t> tell_property(const story_line_t& line);
  std::optional<story_line_t> tell_identity(const story_line_t& line, const std::string& name,
                                            const std::string& value);

  bool tells_everything;
  std::map<std::string, std::string> identity;
};

/// A line that tells of a property: "WHO reads PATH: "VALUE"", "WHO watches PATH", "WHO sets PATH to "VALUE"".
struct property_event_t {
  std::string who;
  std::string verb;
  std::string path;
  std::string value;
};

/// The event of a line of the actor "property"; nothing for any other line.
std::optional<property_event_t> property_event_of(const story_line_t& line);

}  // namespace sim
