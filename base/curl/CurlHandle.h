// A libcurl handle with the connection that it keeps open between requests.
#pragma once

#include <curl/curl.h>

#include <memory>

namespace qv::curl {

// Use from one thread at a time. The destructor closes the connection.
class CurlHandle {
 public:
  // The first handle initializes libcurl. Throws std::bad_alloc if libcurl gives none.
  CurlHandle();

  [[nodiscard]] CURL* Easy() const { return easy_.get(); }
  [[nodiscard]] CURLM* Multi() const { return multi_.get(); }

 private:
  template <auto kFree>
  struct Free {
    template <class Handle>
    void operator()(Handle* handle) const {
      kFree(handle);
    }
  };

  // Owns the connection, so it must outlive the transfer.
  std::unique_ptr<CURLM, Free<curl_multi_cleanup>> multi_;
  std::unique_ptr<CURL, Free<curl_easy_cleanup>> easy_;
};

}  // namespace qv::curl
