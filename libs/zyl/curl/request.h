#pragma once

#include <curl/curl.h>

#include <memory>

namespace zyl::curl {

/// A transfer that a `manager_t` can carry out. Owns its easy handle, whose options derived classes set before the
/// request is given to a manager, on any thread; CURLOPT_PRIVATE is taken.
///
/// libcurl leaves the signals of the process alone (CURLOPT_NOSIGNAL), so that requests may run beside other threads.
/// Who fetches over TLS must have SIGPIPE ignored: the TLS library writes to connections that the peer has closed.
///
/// `completed` and `finish` run on the manager's loop and must not throw. Afterwards the manager destroys the request,
/// there too. A request that is removed, or whose manager ends first, is destroyed without either. A destructor must
/// not call the manager: it may be the manager's own end that it is part of.
class request_t {
 public:
  /// Throws `exception_t` if there is no easy handle to be had, or if it does not take an option.
  request_t();
  virtual ~request_t() = default;

  request_t(const request_t&) = delete;
  request_t& operator=(const request_t&) = delete;
  request_t(request_t&&) = delete;
  request_t& operator=(request_t&&) = delete;

  /// The transfer ended with `result`. The handle still answers for it.
  virtual void completed(CURLcode result) = 0;

  /// The last call that the manager makes, after `completed`.
  virtual void finish() = 0;

  /// The handle; lives as long as the request.
  CURL* easy() const { return handle.get(); }

 private:
  struct easy_cleanup_t {
    void operator()(CURL* owned) const { curl_easy_cleanup(owned); }
  };

  std::unique_ptr<CURL, easy_cleanup_t> handle;
};

}  // namespace zyl::curl
