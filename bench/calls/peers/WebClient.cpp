#include "WebClient.h"

#include <fmt/format.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>

namespace qv::bench {

namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

File Open(const std::string& path, const char* mode) {
  File file(std::fopen(path.c_str(), mode));
  if (file == nullptr) throw std::runtime_error("cannot open " + path);
  return file;
}

void Perform(CURL* curl) {
  const CURLcode code = curl_easy_perform(curl);
  if (code != CURLE_OK) {
    throw std::runtime_error(std::string("libcurl: ") + curl_easy_strerror(code));
  }
}

}  // namespace

WebClient::WebClient(std::uint16_t port)
    : address_(fmt::format("http://127.0.0.1:{}/", port)), curl_(curl_easy_init()) {
  if (curl_ == nullptr) throw std::runtime_error("libcurl cannot be used");
}

void WebClient::Upload(const std::string& local_file, const std::string& name) {
  const File file = Open(local_file, "rb");
  CURL* const curl = Begin(name);
  curl_easy_setopt(curl, CURLOPT_UPLOAD, 1L);
  curl_easy_setopt(curl, CURLOPT_READDATA, file.get());
  curl_easy_setopt(curl, CURLOPT_INFILESIZE_LARGE,
                   static_cast<curl_off_t>(std::filesystem::file_size(local_file)));
  Perform(curl);
}

void WebClient::Download(const std::string& local_file, const std::string& name) {
  const File file = Open(local_file, "wb");
  CURL* const curl = Begin(name);
  curl_easy_setopt(curl, CURLOPT_WRITEDATA, file.get());
  Perform(curl);
}

CURL* WebClient::Begin(const std::string& name) {
  CURL* const curl = curl_.get();
  curl_easy_reset(curl);  // keeps the connection
  curl_easy_setopt(curl, CURLOPT_URL, (address_ + name).c_str());
  curl_easy_setopt(curl, CURLOPT_FAILONERROR, 1L);
  curl_easy_setopt(curl, CURLOPT_NOPROXY, "*");
  return curl;
}

}  // namespace qv::bench
