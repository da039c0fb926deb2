#include "zyl/curl/download.h"

#include <unistd.h>

#include <exception>
#include <utility>

#include "zyl/curl/curl_init.h"
#include "zyl/log/module_logger.h"

static auto& module_log = zyl::module_logger("zyl_curl");
#include "zyl/log/log_bind.h"

namespace zyl::curl {

download_t::download_t(const std::string& url, done_t call_when_done, std::size_t body_bytes_at_most)
    : done(std::move(call_when_done)), body_limit(body_bytes_at_most) {
  require_init(curl_easy_setopt(easy(), CURLOPT_URL, url.c_str()));
  require_init(curl_easy_setopt(easy(), CURLOPT_WRITEFUNCTION, on_body));
  require_init(curl_easy_setopt(easy(), CURLOPT_WRITEDATA, this));
}

void download_t::completed(CURLcode code) {
  result.code = code;
  const CURLcode asked = curl_easy_getinfo(easy(), CURLINFO_RESPONSE_CODE, &result.status);
  if (asked != CURLE_OK) {
    log_error_s() << "  [" << gettid() << "]: [curl/download:" << __LINE__
                  << "] ERROR : curl_easy_getinfo - CURLINFO_RESPONSE_CODE returns " << curl_easy_strerror(asked);
  }
}

void download_t::finish() { done(result); }

std::size_t download_t::on_body(char* data, std::size_t size, std::size_t count, void* self) noexcept {
  auto& download = *static_cast<download_t*>(self);
  const std::size_t bytes = size * count;
  if (bytes > download.body_limit - download.result.body.size()) {
    return 0;
  }
  // The callers are C.
  try {
    download.result.body.append(data, bytes);
  } catch (const std::exception& /*no memory*/) {
    return 0;
  }
  return bytes;
}

}  // namespace zyl::curl
