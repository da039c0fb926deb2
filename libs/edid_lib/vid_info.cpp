#include "edid_lib/vid_info.h"

#include <ostream>

namespace edid_lib {
namespace {

void cut_end(std::string_view& text, std::string_view end) {
  if (text.ends_with(end)) {
    text.remove_suffix(end.size());
  }
}

}  // namespace

const vid_resolution_t* vid_info_t::current() const {
  const std::size_t index = current_index < 0 ? 0 : static_cast<std::size_t>(current_index);
  return index < modes.size() ? &modes[index] : nullptr;
}

std::string vid_info_t::list_text(std::size_t index) const {
  std::string text = modes[index].list_text();
  if (current_index >= 0 && static_cast<std::size_t>(current_index) == index) {
    text += '*';
  }
  return text;
}

vid_resolution_t parse_list_text(std::string_view text) {
  cut_end(text, "*");
  cut_end(text, " (preferred)");
  return vid_resolution_t(text);
}

std::ostream& operator<<(std::ostream& out, const vgn_mode_t& mode) {
  return out << "vgn_mode_t{" << mode.timing << ',' << mode.number << '}';
}

std::ostream& operator<<(std::ostream& out, const vgn_vid_info_t& info) {
  return out << "vgn_vid_info_t{" << info.timing << ',' << info.color << '}';
}

std::ostream& operator<<(std::ostream& out, const vid_info_t& info) {
  out << "vid_info_t{" << info.current_index;
  for (std::size_t i = 0; i < info.modes.size(); ++i) {
    out << ',' << info.list_text(i);
  }
  return out << '}';
}

}  // namespace edid_lib
