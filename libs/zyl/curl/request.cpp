#include "zyl/curl/request.h"

#include "zyl/curl/curl_init.h"

namespace zyl::curl {

request_t::request_t() {
  set_libcurl_up();
  handle.reset(curl_easy_init());
  if (!handle) {
    throw_init_failure(CURLE_FAILED_INIT);
  }
  require_init(curl_easy_setopt(easy(), CURLOPT_PRIVATE, this));
  require_init(curl_easy_setopt(easy(), CURLOPT_NOSIGNAL, 1L));
}

}  // namespace zyl::curl
