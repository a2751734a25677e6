// A handle of libcurl, with the connection that it keeps open between calls.
#pragma once

#include <curl/curl.h>

#include <memory>
#include <string>

namespace qv {

// One thread at a time. Destruction closes.
class CurlHandle {
 public:
  // Null when there is no memory.
  [[nodiscard]] static std::unique_ptr<CurlHandle> Make(const std::string& url);

  // The address that it is for.
  [[nodiscard]] const std::string& Server() const { return url_; }
  // Whether the connection that it keeps, if any, lies idle as it should. libcurl looks for one
  // that was closed, but would take what a server sent unasked for the answer to the next request.
  [[nodiscard]] bool IsQuiet() const;
  // To be called when an exchange is over and still set up: notes which connection is kept.
  void NoteConnection();

  [[nodiscard]] CURL* Easy() const { return easy_.get(); }
  [[nodiscard]] CURLM* Multi() const { return multi_.get(); }

 private:
  explicit CurlHandle(const std::string& url) : url_(url) {}

  template <auto kFree>
  struct Free {
    template <class Handle>
    void operator()(Handle* handle) const {
      kFree(handle);
    }
  };

  std::string url_;
  // Owns the connection, so it outlives the transfer.
  std::unique_ptr<CURLM, Free<curl_multi_cleanup>> multi_;
  std::unique_ptr<CURL, Free<curl_easy_cleanup>> easy_;
  // The multi handle's; CURL_SOCKET_BAD when the server closed it.
  curl_socket_t socket_ = CURL_SOCKET_BAD;
};

}  // namespace qv
