#include "CurlHandle.h"

#include <new>

namespace qv::curl {

CurlHandle::CurlHandle() {
  // There is no counterpart at the end: the host may use libcurl as well.
  static const CURLcode is_ready = curl_global_init(CURL_GLOBAL_DEFAULT);
  if (is_ready != CURLE_OK) throw std::bad_alloc();
  multi_.reset(curl_multi_init());
  easy_.reset(curl_easy_init());
  if (!multi_ || !easy_) throw std::bad_alloc();
  // It is for one server at a time; a new connection closes the one before.
  curl_multi_setopt(multi_.get(), CURLMOPT_MAXCONNECTS, 1L);
}

}  // namespace qv::curl
