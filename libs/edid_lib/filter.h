#pragma once

#include <string_view>

namespace edid_lib {

/// A named question about a value, with yes or no for an answer. Never changes once it is made: any thread may ask.
template <typename T>
class filter {
 public:
  filter() = default;
  virtual ~filter() = default;

  filter(const filter&) = delete;
  filter& operator=(const filter&) = delete;
  filter(filter&&) = delete;
  filter& operator=(filter&&) = delete;

  virtual bool accept(const T& value) const = 0;
  virtual std::string_view name() const = 0;
};

}  // namespace edid_lib
