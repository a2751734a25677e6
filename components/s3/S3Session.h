// Requests to an S3 server and its answers.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "S3Endpoint.h"
#include "S3Signature.h"
#include "components/queue/CurlRequest.h"
#include "components/queue/LocalFile.h"
#include "components/queue/TransferBody.h"
#include "qvnetcall/transfer/ResultCodes.h"

namespace qv::components {

// The status and headers of an answer.
struct S3Head {
  long status = 0;                      // 0 if there was no answer
  std::string etag = {};                // also empty if it is not a strong ETag
  std::string range = {};               // the part of the object that the body holds, if it is one
  std::optional<std::uint64_t> length;  // length of the body, or of the body that a GET would have
};

struct S3Answer {
  QvTransferResult result = QvTransfer_BadAnswer;
  S3Head head = {};
  std::string body = {};  // empty if it was passed to a receiver
  std::string code = {};  // the error code in the body, whatever the status is

  [[nodiscard]] bool IsFine() const { return result == QvTransfer_Success; }
};

// Receives the body of an answer that contains an object.
class S3Receiver {
 public:
  // Any result but Success ends the request with that result. Begin is called once, before the
  // first byte, even if the body is empty.
  [[nodiscard]] virtual QvTransferResult Begin(const S3Head& head) = 0;
  [[nodiscard]] virtual QvTransferResult Write(std::span<const char> bytes) = 0;

 protected:
  ~S3Receiver() = default;
};

// Use from one thread. Throws only std::bad_alloc.
class S3Session {
 public:
  S3Session(S3Endpoint endpoint, S3Keys keys, TransferSettings settings)
      : endpoint_(std::move(endpoint)), keys_(std::move(keys)), settings_(std::move(settings)) {}

  // Keeps request and answer in memory. The size of the answer is limited.
  [[nodiscard]] S3Answer Ask(const S3Request& request, std::string_view body = {});
  // The same for a request that makes the server move `bytes` itself, which takes longer. `meter`
  // can stop it.
  [[nodiscard]] S3Answer AskAndWait(const S3Request& request, std::string_view body,
                                    std::uint64_t bytes, TransferMeter& meter);
  // Sends `length` bytes of a file from `start` on, and reports to `meter` how many of them were
  // sent.
  [[nodiscard]] S3Answer Send(const S3Request& request, LocalSource& source, std::uint64_t start,
                              std::uint64_t length, TransferMeter& meter);
  // Passes an object to `receiver`. `meter` is told about the bytes of every answer, even without
  // an object.
  [[nodiscard]] S3Answer Receive(const S3Request& request, S3Receiver& receiver,
                                 TransferMeter& meter);

  [[nodiscard]] const TransferSettings& Settings() const { return settings_; }

 private:
  // Returns the request with address and signature, or nothing if it cannot be addressed.
  [[nodiscard]] std::optional<S3Wire> Prepare(const S3Request& request,
                                              const std::string& body_hash) const;
  [[nodiscard]] S3Answer Exchange(const S3Wire& wire, std::string_view body,
                                  const TransferSettings& settings, TransferMeter* meter);

  S3Endpoint endpoint_;
  S3Keys keys_;
  TransferSettings settings_;
  // Keeps its connections between requests.
  curl::CurlHandle curl_;
};

}  // namespace qv::components
