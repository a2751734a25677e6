#include "CurlHandle.h"

namespace qv {

std::unique_ptr<CurlHandle> CurlHandle::Make(const std::string& url) {
  std::unique_ptr<CurlHandle> handle(new CurlHandle(url));
  handle->multi_.reset(curl_multi_init());
  handle->easy_.reset(curl_easy_init());
  if (!handle->multi_ || !handle->easy_) return nullptr;
  // It is for one server, and used by one call at a time.
  curl_multi_setopt(handle->multi_.get(), CURLMOPT_MAXCONNECTS, 1L);
  return handle;
}

bool CurlHandle::IsQuiet() const {
  if (socket_ == CURL_SOCKET_BAD) return true;
  curl_waitfd unread{.fd = socket_, .events = CURL_WAIT_POLLIN, .revents = 0};
  int ready = 0;
  return curl_multi_poll(multi_.get(), &unread, 1, 0, &ready) == CURLM_OK && ready == 0;
}

void CurlHandle::NoteConnection() {
  socket_ = CURL_SOCKET_BAD;
  curl_easy_getinfo(easy_.get(), CURLINFO_ACTIVESOCKET, &socket_);
}

}  // namespace qv
