// Explains the results of the library's calls in words.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

namespace qv::tool {

// The calls, by the commands that make them. The same number has a different meaning for each.
enum class Call {
  kQuery,
  kProcedure,
  kExec,
  kBatch,
  // These return 0 on success.
  kUpload,
  kDownload,
  kRemove,
  // These return 1 on success and 0 otherwise.
  kMakeFolder,
  kRemoveFolder,
  kMove,
  kCopy,
  kLook,        // every call that only reads, but for the next
  kLookInside,  // one that lists what an entry holds, and fails for the entry's own reason
  kLog,
};

// The transport of a call, or local mode. Here, too, the same number has different meanings.
enum class Route { kSocket, kWeb, kDirect };

struct ReturnCode {
  int code;
  std::string_view meaning;
  std::string_view advice;  // what the user can do; empty for success
};

// Returns the explanation of a result of that call. Every value has one.
[[nodiscard]] ReturnCode ExplainResult(Call call, Route route, int code);

// Why a call failed, as the server, the transport or the driver says.
struct Reason {
  int error_class = 0;  // of qv::error
  std::string text{};   // empty if nobody gave a reason
};

// A failure in words that are safe to show.
struct Failure {
  std::string what;  // the reason or, without one, the explanation of the result; and the result
  std::string hint;  // what the user can do; empty if it would not help
};
[[nodiscard]] Failure DescribeFailure(Call call, Route route, int code, const Reason& reason);

}  // namespace qv::tool
