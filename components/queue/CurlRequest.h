// One request of a component over a libcurl handle, which keeps its connections between requests.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "TransferBody.h"
#include "base/curl/Transfer.h"
#include "qvnetcall/transfer/ResultCodes.h"

namespace qv::components {

// The parameters of the components. qvnetcall/transfer/Extensions.h documents them.
struct TransferSettings {
  std::string ca_file;
  std::chrono::milliseconds connect_timeout{5000};
  std::chrono::milliseconds io_timeout{30000};
  // Used by the cloud component only.
  std::string region = "us-east-1";
  std::uint64_t part_bytes = std::uint64_t{16} << 20;
};

// All objects that are passed in must outlive the request. Use from one thread.
class CurlRequest : private curl::Handler {
 public:
  // Uses `handle` exclusively until destroyed, and leaves it without options.
  CurlRequest(curl::CurlHandle& handle, const TransferSettings& settings);
  CurlRequest(const CurlRequest&) = delete;
  CurlRequest& operator=(const CurlRequest&) = delete;

  // Documented on curl::Transfer.
  template <class Value>
  void Set(CURLoption option, Value value) {
    transfer_.Set(option, value);
  }
  void AddLine(CURLoption option, const std::string& line) { transfer_.AddLine(option, line); }

  void Send(BodySource& source) { source_ = &source; }
  // Passes the received body to `sink`. Without a sink a small body is discarded, and a large one
  // fails.
  void Receive(BodySink& sink) { sink_ = &sink; }
  // Reports progress to `meter`: the bytes of this request plus the `base` bytes that were moved
  // before. Pass 0 for `total` if the server knows it.
  void ReportTo(TransferMeter& meter, std::uint64_t base, std::uint64_t total);

  // Runs the request. Call it once. Success only means that an answer arrived, not that it is a
  // good one. Throws std::bad_alloc.
  [[nodiscard]] QvTransferResult Perform();

  // The outcome after Perform(). AnswerCode() is 0 if there was no answer.
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
