#pragma once

#include <cerrno>
#include <exception>
#include <string>
#include <system_error>
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

/// Something about processes, signals or sessions went wrong.
class process_exception_t : public exception_t {
 public:
  using exception_t::exception_t;
};

/// A process function failed just now: the text is followed by " : " and what `errno` says.
class last_process_exception_t : public process_exception_t {
 public:
  explicit last_process_exception_t(const std::string& text, int error = errno)
      : process_exception_t(text + " : " + std::generic_category().message(error)) {}
};

}  // namespace zyl
