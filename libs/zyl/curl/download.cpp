#include "zyl/curl/download.h"

#include <utility>

namespace zyl::curl {

download_t::download_t(const std::string& url, done_t call_when_done, std::size_t body_bytes_at_most)
    : done(std::move(call_when_done)), body_limit(body_bytes_at_most) {
  curl_easy_setopt(easy(), CURLOPT_URL, url.c_str());
  curl_easy_setopt(easy(), CURLOPT_WRITEFUNCTION, on_body);
  curl_easy_setopt(easy(), CURLOPT_WRITEDATA, this);
}

void download_t::completed(CURLcode code) {
  result.code = code;
  curl_easy_getinfo(easy(), CURLINFO_RESPONSE_CODE, &result.status);
}

void download_t::finish() { done(result); }

std::size_t download_t::on_body(char* data, std::size_t size, std::size_t count, void* self) {
  auto& download = *static_cast<download_t*>(self);
  const std::size_t bytes = size * count;
  if (bytes > download.body_limit - download.result.body.size()) {
    return 0;
  }
  download.result.body.append(data, bytes);
  return bytes;
}

}  // namespace zyl::curl
