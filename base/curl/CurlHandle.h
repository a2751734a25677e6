// A handle of libcurl, with the connection that it keeps open between requests.
#pragma once

#include <curl/curl.h>

#include <memory>

namespace qv::curl {

// One thread at a time. Destruction closes.
class CurlHandle {
 public:
  // The first one makes libcurl ready. Throws std::bad_alloc when there can be none.
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

  // Owns the connection, so it outlives the transfer.
  std::unique_ptr<CURLM, Free<curl_multi_cleanup>> multi_;
  std::unique_ptr<CURL, Free<curl_easy_cleanup>> easy_;
};

}  // namespace qv::curl
