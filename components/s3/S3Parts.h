// Objects that are too large for one request: they are put together from parts.
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

// How an object is divided.
struct PartPlan {
  std::uint64_t total = 0;
  std::uint64_t part_bytes = 1;

  // Parts of `part_bytes`, or of more when there would be too many of them.
  [[nodiscard]] static PartPlan For(std::uint64_t total, std::uint64_t part_bytes);

  [[nodiscard]] int Count() const;
  // Of part `number`, from 1.
  [[nodiscard]] std::uint64_t Start(int number) const;
  [[nodiscard]] std::uint64_t Length(int number) const;
};

// One try to build an object. What a broken one left at the server is used by the next: `Resume`
// carries the server's name for the upload as its part.
class S3Parts {
 public:
  // Moves one part; `request` is complete but for what it carries.
  using Move = std::function<S3Answer(S3Request request, std::uint64_t start, std::uint64_t length,
                                      TransferMeter& meter)>;

  // `source` says which state of which source is moved, and becomes the tag of `resume`.
  S3Parts(S3Session& session, const S3Path& target, const PartPlan& plan, std::string source,
          Resume& resume);

  [[nodiscard]] QvTransferResult Run(const Move& move, TransferMeter& meter);

  // Gives up what broken tries left, and says how that went.
  [[nodiscard]] static QvTransferResult Abandon(S3Session& session, const S3Path& target,
                                                const Resume& resume);

 private:
  [[nodiscard]] QvTransferResult Begin();
  // Goes on with the upload that `resume_` names. False when it is not there any more.
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
  // By number; those that the server does not have yet have no ETag.
  std::vector<S3Part> parts_;
};

}  // namespace qv::components
