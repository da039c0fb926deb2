#include "zyl/curl/curl_init.h"

namespace zyl::curl {

void throw_init_failure(CURLcode code) {
  throw exception_t(std::string("unexpected error in CURL init : ") + curl_easy_strerror(code));
}

void set_libcurl_up() {
  static const CURLcode result = curl_global_init(CURL_GLOBAL_DEFAULT);
  if (result != CURLE_OK) {
    throw_init_failure(result);
  }
}

}  // namespace zyl::curl
