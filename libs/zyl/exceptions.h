#pragma once

#include <exception>
#include <string>
#include <utility>

namespace zyl {

/// Base of the exceptions for programming and system errors below the application layer.
class exception_t : public std::exception {
 public:
  explicit exception_t(std::string text) : message(std::move(text)) {}
  const char* what() const noexcept override { return message.c_str(); }

 private:
  std::string message;
};

/// A timer was used that has no event.
class uninitialized_timer_exception_t : public exception_t {
 public:
  uninitialized_timer_exception_t() : exception_t("timer uninitialized") {}
};

}  // namespace zyl
