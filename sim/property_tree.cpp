#include "sim/property_tree.h"

#include <utility>

namespace sim {

void property_tree_t::publish(std::string_view path, std::string_view value) {
  auto published = values.find(path);
  if (published == values.end()) {
    published = values.emplace(path, "").first;
  }
  published->second = value;
  // A handler may publish another value; those after it still hear this one.
  const std::string told(value);
  // By index over what there is now: a handler may add handlers.
  const std::size_t count = change_handlers.size();
  for (std::size_t i = 0; i < count; ++i) {
    const auto handler = change_handlers[i];
    handler(published->first, told);
  }
}

void property_tree_t::set(std::string_view path, std::string_view value) {
  publish(path, value);
  const auto found = set_handlers.find(path);
  if (found == set_handlers.end()) {
    return;
  }
  const auto handlers = found->second;
  const std::string told(value);
  for (const auto& handler : handlers) {
    handler(told);
  }
}

void property_tree_t::create(std::string_view path) { values.try_emplace(std::string(path)); }

std::string property_tree_t::value(std::string_view path) const {
  const std::string* found = find(path);
  return found != nullptr ? *found : std::string();
}

const std::string* property_tree_t::find(std::string_view path) const {
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
