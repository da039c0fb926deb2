#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <utility>

#include "zyl/curl/request.h"

/// What became of requests, counted.
struct fates_t {
  std::atomic<int> completed = 0;
  std::atomic<int> finished = 0;
  std::atomic<int> destroyed = 0;
  /// Those whose transfer succeeded.
  std::atomic<int> succeeded = 0;
};

/// A request that keeps nothing of what it fetches and counts what happens to it.
class probe_request_t : public zyl::curl::request_t {
 public:
  probe_request_t(const std::string& url, fates_t& counted) : fates(counted) {
    curl_easy_setopt(easy(), CURLOPT_URL, url.c_str());
    curl_easy_setopt(easy(), CURLOPT_WRITEFUNCTION, on_body);
    curl_easy_setopt(easy(), CURLOPT_WRITEDATA, this);
  }

  ~probe_request_t() override { ++fates.destroyed; }

  void completed(CURLcode result) override {
    ++fates.completed;
    if (result == CURLE_OK) {
      ++fates.succeeded;
    }
  }

  void finish() override { ++fates.finished; }

  /// Called whenever a piece of the body comes.
  std::function<void()> on_piece = [] {};

 private:
  static std::size_t on_body(char* /*data*/, std::size_t size, std::size_t count, void* self) {
    static_cast<probe_request_t*>(self)->on_piece();
    return size * count;
  }

  fates_t& fates;
};
