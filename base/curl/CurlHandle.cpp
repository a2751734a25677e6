#include "CurlHandle.h"

#include <new>

namespace qv::curl {

CurlHandle::CurlHandle() {
  // libcurl is never cleaned up, because the host may use it as well.
  static const CURLcode is_ready = curl_global_init(CURL_GLOBAL_DEFAULT);
  if (is_ready != CURLE_OK) throw std::bad_alloc();
  multi_.reset(curl_multi_init());
  easy_.reset(curl_easy_init());
  if (!multi_ || !easy_) throw std::bad_alloc();
  // A handle serves one server at a time, so a new connection closes the previous one.
  curl_multi_setopt(multi_.get(), CURLMOPT_MAXCONNECTS, 1L);
}

}  // namespace qv::curl
