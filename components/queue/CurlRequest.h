// One request over a handle of libcurl, whose connections outlive it.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "TransferBody.h"
#include "base/curl/Transfer.h"
#include "qvnetcall/transfer/ResultCodes.h"

namespace qv::components {

// The parameters of the components; qvnetcall/transfer/Extensions.h says what they mean.
struct TransferSettings {
  std::string ca_file;
  std::chrono::milliseconds connect_timeout{5000};
  std::chrono::milliseconds io_timeout{30000};
  // Cloud only.
  std::string region = "us-east-1";
  std::uint64_t part_bytes = std::uint64_t{16} << 20;
};

// Everything that is handed over outlives the request. One thread.
class CurlRequest : private curl::Handler {
 public:
  // `handle` is the request's until it is destroyed, and without any option again then.
  CurlRequest(curl::CurlHandle& handle, const TransferSettings& settings);
  CurlRequest(const CurlRequest&) = delete;
  CurlRequest& operator=(const CurlRequest&) = delete;

  // As of curl::Transfer.
  template <class Value>
  void Set(CURLoption option, Value value) {
    transfer_.Set(option, value);
  }
  void AddLine(CURLoption option, const std::string& line) { transfer_.AddLine(option, line); }

  void Send(BodySource& source) { source_ = &source; }
  // What is received goes to `sink`; without one it is dropped, and there must not be much of it.
  void Receive(BodySink& sink) { sink_ = &sink; }
  // Hears of this request's bytes, on top of `base` that were moved before; `total` is 0 when the
  // request is to find it out.
  void ReportTo(TransferMeter& meter, std::uint64_t base, std::uint64_t total);

  // Runs it, once. Success says nothing of what a server answered in the words of its protocol.
  // Throws std::bad_alloc.
  [[nodiscard]] QvTransferResult Perform();

  // What became of it, once it has run. The answer's code is 0 when there was none.
  [[nodiscard]] CURLcode Code() const { return transfer_.Outcome().value_or(CURLE_OK); }
  [[nodiscard]] long AnswerCode() const { return transfer_.AnswerCode(); }

 private:
  curl::Next Send(std::span<char> room, std::size_t& count) override;
  bool Rewind(std::uint64_t offset) override;
  curl::Next TakeBody(std::span<const char> bytes) override;
  bool GoesOn(const curl::Progress& progress) override;

  [[nodiscard]] QvTransferResult Result() const;

  curl::Transfer transfer_;
  BodySource* source_ = nullptr;
  BodySink* sink_ = nullptr;
  TransferMeter* meter_ = nullptr;
  std::uint64_t base_ = 0;
  std::uint64_t total_ = 0;
  std::size_t dropped_ = 0;
  bool is_stopped_ = false;
  bool has_file_failed_ = false;
};

}  // namespace qv::components
