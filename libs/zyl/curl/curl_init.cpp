#include "zyl/curl/curl_init.h"

namespace zyl::curl {

void throw_init_failure(CURLcode code) {
  throw exception_t(std::string("unexpected error in CURL init : ") + curl_easy_strerror(code));
}

void require_init(CURLcode code) {
  if (code != CURLE_OK) {
    throw_init_failure(code);
  }
}

void set_libcurl_up() {
  static const CURLcode result = curl_global_init(CURL_GLOBAL_DEFAULT);
  require_init(result);
}

}  // namespace zyl::curl
