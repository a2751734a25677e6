// Files that go to a web server and come back, with libcurl.
#pragma once

#include <curl/curl.h>

#include <cstdint>
#include <memory>
#include <string>

namespace qv::bench {

// Keeps its connection. Throws std::runtime_error if something fails.
class WebClient {
 public:
  explicit WebClient(std::uint16_t port);

  void Upload(const std::string& local_file, const std::string& name);
  void Download(const std::string& local_file, const std::string& name);

 private:
  struct Closer {
    void operator()(CURL* curl) const { curl_easy_cleanup(curl); }
  };

  // Forgets the options of the previous transfer, and sets those that all have.
  CURL* Begin(const std::string& name);

  const std::string address_;
  std::unique_ptr<CURL, Closer> curl_;
};

}  // namespace qv::bench
