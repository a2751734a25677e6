// The file server or the cloud store that queued files are moved to and from. All that differs
// between the two stands behind this.
#pragma once

#include <memory>
#include <string>

#include "qvnetcall/transfer/Extensions.h"
#include "tools/qvcall/options/QueueOptions.h"
#include "tools/qvcall/output/ReturnCodes.h"

namespace qv::tool {

// As the library numbers them.
enum class QueueKind : int { kUpload, kDownload, kCopy };

// One connection; all calls on the thread that made it. Results are the component's, or
// result::kNoComponent. A call that the component fails as such throws _com_error.
class QueueClient {
 public:
  virtual ~QueueClient() = default;

  [[nodiscard]] virtual long Login(const QueueHost& host, const std::string& password) = 0;
  [[nodiscard]] virtual long Logout() = 0;
  [[nodiscard]] virtual long Add(QueueKind kind, const std::string& first,
                                 const std::string& second) = 0;
  // `count` is how many files succeeded.
  [[nodiscard]] virtual long Run(QueueKind kind, long retries, long& count) = 0;
  // What the last run told the server's log of its failures.
  [[nodiscard]] virtual std::string FailInfo(QueueKind kind, long count) = 0;
  [[nodiscard]] virtual long Move(const std::string& from, const std::string& to) = 0;
  [[nodiscard]] virtual long RemoveFile(const std::string& path) = 0;
  [[nodiscard]] virtual long RemoveFolder(const std::string& path) = 0;
};

// Parameters count for clients that are made afterwards.
[[nodiscard]] std::unique_ptr<QueueClient> MakeQueueClient(Service service);

// What the component's library offers beyond the contract; null when it does not.
struct QueueExtensions {
  decltype(QvCoFtpSetProgress)* set_progress;
  decltype(QvCoFtpSetParameter)* set_parameter;
};

[[nodiscard]] QueueExtensions ExtensionsOf(Service service);

// The words for a result of any call; every value has some. A component of another maker may mean
// something else by it.
[[nodiscard]] ReturnCode ExplainTransfer(Service service, long result);

}  // namespace qv::tool
