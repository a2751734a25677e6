// Explains the results of the library's calls in words.
#pragma once

#include <iosfwd>
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
  kLook,  // every call that only reads
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

// Prints the explanation to `err`. `subject` names the file or folder that the call was about, if
// that is not obvious.
void PrintFailure(Call call, Route route, int code, std::ostream& err,
                  std::string_view subject = {});

}  // namespace qv::tool
