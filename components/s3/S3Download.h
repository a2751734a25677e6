// One attempt to download an object into a local file.
#pragma once

#include <optional>
#include <string>

#include "S3Endpoint.h"
#include "S3Session.h"
#include "components/queue/LocalFile.h"
#include "components/queue/RemoteStore.h"

namespace qv::components {

// The tag of `Resume` is the ETag of the object; a download without one cannot be resumed. Each
// object runs once.
class S3Download final : private S3Receiver, private TransferMeter {
 public:
  // Refers to all arguments, which the caller owns.
  S3Download(S3Session& session, const S3Path& object, const std::string& local, Resume& resume,
             TransferMeter& meter)
      : session_(session), object_(object), local_(local), resume_(resume), meter_(meter) {}

  [[nodiscard]] QvTransferResult Run();

 private:
  QvTransferResult Begin(const S3Head& head) override;
  QvTransferResult Write(std::span<const char> bytes) override;
  // Reports the size of the file instead of the bytes that were received.
  bool Moved(std::uint64_t done, std::uint64_t total) override;

  void ContinuePart();
  [[nodiscard]] QvTransferResult BeginRest(const S3Head& head);
  [[nodiscard]] QvTransferResult BeginWhole(const S3Head& head);
  [[nodiscard]] QvTransferResult Settle(const S3Answer& answer);
  // Removes the part.
  void Discard();

  S3Session& session_;
  const S3Path& object_;
  const std::string& local_;
  Resume& resume_;
  TransferMeter& meter_;
  std::optional<LocalTarget> target_;
  // Size of the object; 0 while it is unknown.
  std::uint64_t total_ = 0;
};

}  // namespace qv::components
