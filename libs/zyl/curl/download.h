#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "zyl/curl/request.h"

namespace zyl::curl {

/// Fetches what a URL stands for into memory. Further options (a time limit, headers, a body to send) can be set on
/// `easy()` before it is given to a manager.
class download_t : public request_t {
 public:
  struct result_t {
    CURLcode code = CURLE_OK;
    /// The response's status, such as 200; 0 if there was none. A status that means failure is not one of `code`.
    long status = 0;
    /// What came, also when the transfer then failed.
    std::string body;
  };
  using done_t = std::function<void(const result_t& result)>;

  static constexpr std::size_t default_body_limit = std::size_t{16} << 20;

  /// `done` is called once, on the manager's loop, unless the request is removed before; it must not be empty and must
  /// not throw. A body of more than `body_limit` bytes, or for which there is no memory, ends the transfer with
  /// CURLE_WRITE_ERROR. Throws `exception_t` as `request_t` does.
  download_t(const std::string& url, done_t done, std::size_t body_limit = default_body_limit);

  void completed(CURLcode code) override;
  void finish() override;

 private:
  static std::size_t on_body(char* data, std::size_t size, std::size_t count, void* self) noexcept;

  done_t done;
  std::size_t body_limit;
  result_t result;
};

}  // namespace zyl::curl
