#include "sim/log_collector.h"

#include <sys/socket.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <system_error>
#include <vector>

#include "sim/unix_address.h"

namespace sim {
namespace {

constexpr std::size_t largest_datagram = 65536;

bool is_digit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }

std::string_view without_priority(std::string_view text) {
  const std::size_t end = text.find('>');
  if (!text.starts_with('<') || end == std::string_view::npos || end < 2 || end > 4 ||
      !std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(end), is_digit)) {
    return text;
  }
  return text.substr(end + 1);
}

/// The C library writes the time as in "Nov  1 09:05:59 ".
std::string_view without_time(std::string_view text) {
  constexpr std::string_view form = "aaa _0 00:00:00 ";
  const auto fits = [](char wanted, char found) {
    switch (wanted) {
      case 'a':
        return std::isalpha(static_cast<unsigned char>(found)) != 0;
      case '_':
        return is_digit(found) || found == ' ';
      case '0':
        return is_digit(found);
      default:
        return found == wanted;
    }
  };
  if (text.size() < form.size() || !std::equal(form.begin(), form.end(), text.begin(), fits)) {
    return text;
  }
  return text.substr(form.size());
}

}  // namespace

std::string_view line_of_datagram(std::string_view datagram) {
  const std::string_view text = without_priority(datagram);
  std::string_view line = text.size() == datagram.size() ? text : without_time(text);
  while (!line.empty() && (line.back() == '\n' || line.back() == '\0')) {
    line.remove_suffix(1);
  }
  return line;
}

log_collector_t::log_collector_t(event_base* base, property_tree_t& published_tree, story_t& told_story,
                                 const std::string& log_file, const std::string& path)
    : tree(published_tree),
      story(told_story),
      file(std::fopen(log_file.c_str(), "we")),
      socket(bind_unix_socket(SOCK_DGRAM, path)),
      datagram_event(event_new(base, socket.get(), EV_READ | EV_PERSIST, on_datagram, this)) {
  if (!file) {
    throw std::system_error(errno, std::generic_category(), "cannot write the log to " + log_file);
  }
  event_add(datagram_event.get(), nullptr);
  tree.publish("/sim/log/last", "");
  tree.publish("/sim/log/file", log_file);
}

void log_collector_t::on_datagram(evutil_socket_t /*fd*/, short /*events*/, void* self) {
  static_cast<log_collector_t*>(self)->collect();
}

void log_collector_t::collect() {
  // A daemon that logs without end must not keep the rest of the appliance waiting.
  constexpr int datagrams_a_turn = 64;
  std::vector<char> datagram(largest_datagram);
  for (int i = 0; i < datagrams_a_turn; ++i) {
    const ssize_t size = recv(socket.get(), datagram.data(), datagram.size(), MSG_DONTWAIT);
    if (size < 0) {
      return;
    }
    record({datagram.data(), static_cast<std::size_t>(size)});
  }
}

void log_collector_t::record(std::string_view datagram) {
  const std::string line = one_line(line_of_datagram(datagram));
  std::fputs((line + '\n').c_str(), file.get());
  std::fflush(file.get());
  story.tell("log", line);
  tree.publish("/sim/log/last", line);
}

}  // namespace sim
