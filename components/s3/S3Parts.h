// Multipart uploads and copies, for objects that are too large for one request.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "S3Endpoint.h"
#include "S3Session.h"
#include "S3Xml.h"
#include "components/queue/RemoteStore.h"

namespace qv::components {

// How an object is divided into parts.
struct PartPlan {
  std::uint64_t total = 0;
  std::uint64_t part_bytes = 1;

  // Uses parts of `part_bytes`, or larger ones if there would be too many.
  [[nodiscard]] static PartPlan For(std::uint64_t total, std::uint64_t part_bytes);

  [[nodiscard]] int Count() const;
  // The position and size of part `number`, counted from 1.
  [[nodiscard]] std::uint64_t Start(int number) const;
  [[nodiscard]] std::uint64_t Length(int number) const;
};

// One attempt at a multipart upload or copy. The next attempt uses the parts that a failed one left
// on the server; `Resume::part` is the server's identifier of the upload.
class S3Parts {
 public:
  // Moves one part. `request` lacks only its content.
  using Move = std::function<S3Answer(S3Request request, std::uint64_t start, std::uint64_t length,
                                      TransferMeter& meter)>;

  // `source` identifies the source and its state. It becomes the tag of `resume`.
  S3Parts(S3Session& session, const S3Path& target, const PartPlan& plan, std::string source,
          Resume& resume);

  [[nodiscard]] QvTransferResult Run(const Move& move, TransferMeter& meter);

  // Removes what failed attempts left on the server. Returns the result of that request.
  [[nodiscard]] static QvTransferResult Abandon(S3Session& session, const S3Path& target,
                                                const Resume& resume);

 private:
  [[nodiscard]] QvTransferResult Begin();
  // Resumes the upload that `resume_` names. Returns false if it no longer exists.
  [[nodiscard]] bool IsResumed(QvTransferResult& result);
  [[nodiscard]] QvTransferResult TakeStock();
  void Keep(const S3Part& part);
  [[nodiscard]] QvTransferResult MoveRest(const Move& move, TransferMeter& meter);
  [[nodiscard]] QvTransferResult Complete(TransferMeter& meter);
  [[nodiscard]] S3Request RequestFor(const char* method) const;

  S3Session& session_;
  const S3Path& target_;
  const PartPlan plan_;
  const std::string source_;
  Resume& resume_;
  // By number. Parts that the server does not have yet have no ETag.
  std::vector<S3Part> parts_;
};

}  // namespace qv::components
