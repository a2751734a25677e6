// One try to bring an object into a local file.
#pragma once

#include <optional>
#include <string>

#include "S3Endpoint.h"
#include "S3Session.h"
#include "components/queue/LocalFile.h"
#include "components/queue/RemoteStore.h"

namespace qv::components {

// Of `Resume`, the tag is the object's ETag; without one nothing is resumed. Used once.
class S3Download final : private S3Receiver, private TransferMeter {
 public:
  // All is the caller's.
  S3Download(S3Session& session, const S3Path& object, const std::string& local, Resume& resume,
             TransferMeter& meter)
      : session_(session), object_(object), local_(local), resume_(resume), meter_(meter) {}

  [[nodiscard]] QvTransferResult Run();

 private:
  QvTransferResult Begin(const S3Head& head) override;
  QvTransferResult Write(std::span<const char> bytes) override;
  // Tells what the file has, whatever was on the wire.
  bool Moved(std::uint64_t done, std::uint64_t total) override;

  void ContinuePart();
  [[nodiscard]] QvTransferResult BeginRest(const S3Head& head);
  [[nodiscard]] QvTransferResult BeginWhole(const S3Head& head);
  [[nodiscard]] QvTransferResult Settle(const S3Answer& answer);
  // Forgets what is there of the file.
  void Discard();

  S3Session& session_;
  const S3Path& object_;
  const std::string& local_;
  Resume& resume_;
  TransferMeter& meter_;
  std::optional<LocalTarget> target_;
  // Of the object; 0 before it is known.
  std::uint64_t total_ = 0;
};

}  // namespace qv::components
