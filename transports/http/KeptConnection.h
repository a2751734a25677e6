#pragma once

#include <string>

#include "base/curl/CurlHandle.h"

namespace qv::wire {

// A connection to one server that is kept open between calls. One thread at a time. Destruction
// closes.
class KeptConnection {
 public:
  // Throws std::bad_alloc when there can be none.
  explicit KeptConnection(const std::string& url) : url_(url) {}

  // The address that it is for.
  [[nodiscard]] const std::string& Server() const { return url_; }
  // Whether the connection, if there is any yet, lies idle as it should. libcurl looks for one that
  // was closed, but would take what a server sent unasked for the answer to the next request.
  [[nodiscard]] bool IsQuiet() const;
  // To be called when an exchange is over and still set up: notes which connection is kept.
  void NoteConnection();

  [[nodiscard]] curl::CurlHandle& Handle() { return handle_; }
  [[nodiscard]] CURL* Easy() const { return handle_.Easy(); }

 private:
  std::string url_;
  curl::CurlHandle handle_;
  // The multi handle's; CURL_SOCKET_BAD when the server closed it.
  curl_socket_t socket_ = CURL_SOCKET_BAD;
};

}  // namespace qv::wire
