#include "sim/property_tree.h"

#include <utility>

namespace sim {

void property_tree_t::publish(const std::string& path, const std::string& value) {
  values[path] = value;
  // By index over what there is now: a handler may add handlers.
  const std::size_t count = change_handlers.size();
  for (std::size_t i = 0; i < count; ++i) {
    const auto handler = change_handlers[i];
    handler(path, value);
  }
}

void property_tree_t::set(const std::string& path, const std::string& value) {
  publish(path, value);
  const auto found = set_handlers.find(path);
  if (found == set_handlers.end()) {
    return;
  }
  const auto handlers = found->second;
  for (const auto& handler : handlers) {
    handler(value);
  }
}

void property_tree_t::create(const std::string& path) { values.try_emplace(path); }

std::string property_tree_t::value(const std::string& path) const {
  const std::string* found = find(path);
  return found != nullptr ? *found : std::string();
}

const std::string* property_tree_t::find(const std::string& path) const {
  const auto found = values.find(path);
  return found != values.end() ? &found->second : nullptr;
}

void property_tree_t::on_set(const std::string& path, set_handler_t handler) {
  set_handlers[path].push_back(std::move(handler));
}

void property_tree_t::on_change(change_handler_t handler) { change_handlers.push_back(std::move(handler)); }

std::vector<std::pair<std::string, std::string>> property_tree_t::below(std::string_view path) const {
  std::string prefix(path);
  if (!prefix.empty() && prefix.back() != '/') {
    prefix += '/';
  }
  if (prefix == "/") {
    prefix.clear();
  }
  std::vector<std::pair<std::string, std::string>> found;
  for (auto at = values.lower_bound(prefix); at != values.end() && at->first.starts_with(prefix); ++at) {
    found.push_back(*at);
  }
  return found;
}

}  // namespace sim
