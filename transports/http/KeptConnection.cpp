#include "KeptConnection.h"

namespace qv::wire {

bool KeptConnection::IsQuiet() const {
  if (socket_ == CURL_SOCKET_BAD) return true;
  curl_waitfd unread{.fd = socket_, .events = CURL_WAIT_POLLIN, .revents = 0};
  int ready = 0;
  return curl_multi_poll(handle_.Multi(), &unread, 1, 0, &ready) == CURLM_OK && ready == 0;
}

void KeptConnection::NoteConnection() {
  socket_ = CURL_SOCKET_BAD;
  curl_easy_getinfo(Easy(), CURLINFO_ACTIVESOCKET, &socket_);
}

}  // namespace qv::wire
