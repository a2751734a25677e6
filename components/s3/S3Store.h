// A store on a server that speaks the S3 protocol.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "S3Endpoint.h"
#include "S3Session.h"
#include "components/queue/RemoteStore.h"

namespace qv::components {

// Sizes in bytes above which an object is moved in parts, and the size of the parts of a copy.
struct S3Limits {
  std::uint64_t single_upload = std::uint64_t{64} << 20;
  std::uint64_t single_copy = std::uint64_t{5} << 30;
  std::uint64_t part_of_copy = std::uint64_t{1} << 30;
};

class S3Store final : public RemoteStore {
 public:
  // Checks that the server is reachable and accepts the keys. Otherwise returns null and sets
  // `result` to the reason.
  [[nodiscard]] static std::unique_ptr<S3Store> LogIn(const S3Endpoint& endpoint,
                                                      const S3Keys& keys,
                                                      const TransferSettings& settings,
                                                      QvTransferResult& result);

  explicit S3Store(S3Session session, const S3Limits& limits = {})
      : session_(std::move(session)), limits_(limits) {}

  QvTransferResult Upload(const std::string& local, const std::string& remote, Resume& resume,
                          TransferMeter& meter) override;
  QvTransferResult Download(const std::string& remote, const std::string& local, Resume& resume,
                            TransferMeter& meter) override;
  QvTransferResult Copy(const std::string& from, const std::string& to, Resume& resume,
                        TransferMeter& meter) override;
  bool Abandon(const std::string& remote, const Resume& resume) override;

  QvTransferResult Rename(const std::string& from, const std::string& to) override;
  QvTransferResult DeleteFile(const std::string& path) override;
  QvTransferResult DeleteFolder(const std::string& path) override;

 private:
  [[nodiscard]] S3Answer AskFor(const S3Path& object, const char* method);
  [[nodiscard]] QvTransferResult CopyAtOnce(const S3Path& to, const TextPairs& source,
                                            std::uint64_t bytes, TransferMeter& meter);
  [[nodiscard]] QvTransferResult CopyInParts(const S3Path& to, const TextPairs& source,
                                             std::uint64_t bytes, Resume& resume,
                                             TransferMeter& meter);
  // Removes what failed attempts left, since they will not be resumed.
  void Forget(const S3Path& target, Resume& resume);

  S3Session session_;
  S3Limits limits_;
};

}  // namespace qv::components
