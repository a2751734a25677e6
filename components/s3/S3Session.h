// Requests to one S3 server, and what it says to them.
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

// What a server answered with, before the body.
struct S3Head {
  long status = 0;                      // 0 when no answer came
  std::string etag = {};                // empty, too, when it is none that could be sent back
  std::string range = {};               // which part of the object the body is, if it is one
  std::optional<std::uint64_t> length;  // of the body, or of what the body would be
};

struct S3Answer {
  QvTransferResult result = QvTransfer_BadAnswer;
  S3Head head = {};
  std::string body = {};  // unless it went to a receiver
  std::string code = {};  // of an error, of which the body may speak whatever the status

  [[nodiscard]] bool IsFine() const { return result == QvTransfer_Success; }
};

// Takes the body of an answer that has the object in it.
class S3Receiver {
 public:
  // What these say, unless Success, becomes the result. Begin is called once, before the first
  // byte, and also when there is none.
  [[nodiscard]] virtual QvTransferResult Begin(const S3Head& head) = 0;
  [[nodiscard]] virtual QvTransferResult Write(std::span<const char> bytes) = 0;

 protected:
  ~S3Receiver() = default;
};

// One thread. Throws std::bad_alloc only.
class S3Session {
 public:
  S3Session(S3Endpoint endpoint, S3Keys keys, TransferSettings settings)
      : endpoint_(std::move(endpoint)), keys_(std::move(keys)), settings_(std::move(settings)) {}

  // All in memory, the answer within limits.
  [[nodiscard]] S3Answer Ask(const S3Request& request, std::string_view body = {});
  // The same for what has the server move `bytes` on its own, which takes its time. `meter` can
  // stop it.
  [[nodiscard]] S3Answer AskAndWait(const S3Request& request, std::string_view body,
                                    std::uint64_t bytes, TransferMeter& meter);
  // Sends `length` bytes of a file from `start` on, and tells `meter` how many of them it has.
  [[nodiscard]] S3Answer Send(const S3Request& request, LocalSource& source, std::uint64_t start,
                              std::uint64_t length, TransferMeter& meter);
  // `meter` is told what this request moves, also of an answer that has no object in it.
  [[nodiscard]] S3Answer Receive(const S3Request& request, S3Receiver& receiver,
                                 TransferMeter& meter);

  [[nodiscard]] const TransferSettings& Settings() const { return settings_; }

 private:
  // The request with an address and a signature; nothing when it can have none.
  [[nodiscard]] std::optional<S3Wire> Prepare(const S3Request& request,
                                              const std::string& body_hash) const;
  [[nodiscard]] S3Answer Exchange(const S3Wire& wire, std::string_view body,
                                  const TransferSettings& settings, TransferMeter* meter);

  S3Endpoint endpoint_;
  S3Keys keys_;
  TransferSettings settings_;
  // Its connections serve one request after the other.
  curl::CurlHandle curl_;
};

}  // namespace qv::components
