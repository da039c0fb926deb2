#pragma once

#include <curl/curl.h>

#include <exception>
#include <string>
#include <utility>

namespace zyl::curl {

/// libcurl could not be set up.
class exception_t : public std::exception {
 public:
  explicit exception_t(std::string text) : message(std::move(text)) {}
  const char* what() const noexcept override { return message.c_str(); }

 private:
  std::string message;
};

/// Throws `exception_t` with the text of a failure to set up.
[[noreturn]] void throw_init_failure(CURLcode code);

/// Does the same if `code` is a failure.
void require_init(CURLcode code);

/// Sets libcurl up for the process, once; it stays so until the process ends. Throws `exception_t` if that failed. Any
/// thread.
void set_libcurl_up();

}  // namespace zyl::curl
