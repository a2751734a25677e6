// One request over a handle of libcurl, whose connections outlive it.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "BodySource.h"
#include "TransferMeter.h"
#include "TransferSettings.h"
#include "base/curl/CurlHandle.h"
#include "qvnetcall/transfer/ResultCodes.h"

namespace qv::components {

// What every request has in common is set by the constructor: deadlines, trust, and nothing from
// the environment. Everything that is handed over outlives the request. One thread.
class CurlRequest {
 public:
  // `handle` is the request's until it is destroyed, and without any option again then.
  CurlRequest(curl::CurlHandle& handle, const TransferSettings& settings);
  ~CurlRequest();
  CurlRequest(const CurlRequest&) = delete;
  CurlRequest& operator=(const CurlRequest&) = delete;

  // libcurl keeps its own copy of texts.
  template <class Value>
  void Set(CURLoption option, Value value) {
    const CURLcode set = curl_easy_setopt(easy_, option, value);
    if (set_up_ == CURLE_OK) set_up_ = set;
  }
  // For an option that takes a list: adds a line to it. One such option per request.
  void AddLine(CURLoption option, const std::string& line);
  void Send(BodySource& source);
  // What is received goes to `sink`; without one it is dropped, and there must not be much of it.
  void Receive(BodySink& sink);
  // Hears of this request's bytes, on top of `base` that were moved before; `total` is 0 when the
  // request is to find it out.
  void ReportTo(TransferMeter& meter, std::uint64_t base, std::uint64_t total);

  // Runs it, once. Success says nothing of what a server answered in the words of its protocol.
  // Throws std::bad_alloc.
  [[nodiscard]] QvTransferResult Perform();

  // What became of it, once it has run. The answer's code is 0 when there was none.
  [[nodiscard]] CURLcode Code() const { return code_; }
  [[nodiscard]] long AnswerCode() const;
  // Whether a server stood ready for it, so that a failure is not one of connecting.
  [[nodiscard]] bool WasConnected() const { return was_connected_; }

 private:
  using Clock = std::chrono::steady_clock;
  struct FreeList {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };

  // What libcurl calls; `self` is the request.
  static int OnLookup(void*, void*, void* self) noexcept;
  static int OnSocket(void* self, curl_socket_t, curlsocktype purpose) noexcept;
  static int OnReady(void* self, char*, char*, int, int) noexcept;
  static std::size_t OnSend(char* room, std::size_t size, std::size_t count, void* self) noexcept;
  static int OnSeek(void* self, curl_off_t offset, int origin) noexcept;
  static std::size_t OnLine(char* line, std::size_t size, std::size_t count, void* self) noexcept;
  static std::size_t OnBody(char* bytes, std::size_t size, std::size_t count, void* self) noexcept;
  static int OnProgress(void* self, curl_off_t download_total, curl_off_t downloaded, curl_off_t,
                        curl_off_t uploaded) noexcept;

  void SetUpCallbacks();
  void BeginToConnect();
  [[nodiscard]] bool GoesOn(std::uint64_t moved);
  [[nodiscard]] bool Tell(std::uint64_t moved, std::uint64_t total);
  [[nodiscard]] CURLcode Drive();
  [[nodiscard]] QvTransferResult Result() const;

  curl::CurlHandle& handle_;
  CURL* easy_;
  const TransferSettings& settings_;
  std::unique_ptr<curl_slist, FreeList> lines_;
  BodySource* source_ = nullptr;
  BodySink* sink_ = nullptr;
  TransferMeter* meter_ = nullptr;
  std::uint64_t base_ = 0;
  std::uint64_t total_ = 0;

  CURLcode set_up_ = CURLE_OK;
  CURLcode code_ = CURLE_OK;
  bool is_connecting_ = false;
  bool was_connected_ = false;
  bool is_stopped_ = false;
  bool has_file_failed_ = false;
  bool is_out_of_memory_ = false;

  std::size_t line_bytes_ = 0;
  Clock::time_point last_progress_;
  std::uint64_t progress_ = 0;
};

}  // namespace qv::components
