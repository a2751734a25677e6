// The connection to a file server or a cloud store, which hides the differences between the two,
// and what its results mean.
#pragma once

#include <memory>
#include <string>

#include "qvnetcall/transfer/Extensions.h"
#include "tools/qvcall/options/QueueOptions.h"
#include "tools/qvcall/output/ReturnCodes.h"

namespace qv::tool {

// Numbered as in the library.
enum class Direction : int { kUpload, kDownload, kCopy };

// One connection. All calls must be made on the thread that created it. Results are those of the
// component (QvTransferResult), or result::kNoComponent. Throws _com_error if the component fails
// at the call level.
class QueueClient {
 public:
  virtual ~QueueClient() = default;

  [[nodiscard]] virtual long Login(const QueueHost& host, const std::string& password) = 0;
  [[nodiscard]] virtual long Logout() = 0;
  [[nodiscard]] virtual long Add(Direction direction, const std::string& first,
                                 const std::string& second) = 0;
  // Sets `count` to the number of files that succeeded.
  [[nodiscard]] virtual long Run(Direction direction, long retries, long& count) = 0;
  // Returns what the last run wrote about its failures to the server's log.
  [[nodiscard]] virtual std::string FailInfo(Direction direction, long count) = 0;
  [[nodiscard]] virtual long Move(const std::string& from, const std::string& to) = 0;
  [[nodiscard]] virtual long RemoveFile(const std::string& path) = 0;
  [[nodiscard]] virtual long RemoveFolder(const std::string& path) = 0;
};

// Parameters of the component apply to clients that are made after they were set.
[[nodiscard]] std::unique_ptr<QueueClient> MakeQueueClient(Service service);

// The component's functions beyond the contract, null if it does not export them.
struct QueueExtensions {
  decltype(QvCoFtpSetProgress)* set_progress;
  decltype(QvCoFtpSetParameter)* set_parameter;
};

[[nodiscard]] QueueExtensions ExtensionsOf(Service service);

// Returns the explanation of a result of any call. Every value has one, but a component from
// another vendor may give it a different meaning.
[[nodiscard]] ReturnCode ExplainTransfer(Service service, long result);

}  // namespace qv::tool
