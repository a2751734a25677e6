// What the results of the library's calls mean, in words.
#pragma once

#include <iosfwd>
#include <string_view>

namespace qv::tool {

// The calls, by the commands that make them; the same number means something else for each.
enum class Call {
  kQuery,
  kProcedure,
  kExec,
  kBatch,
  // These give 0 for success.
  kUpload,
  kDownload,
  kRemove,
  // And these 1; 0 is all else.
  kMakeFolder,
  kRemoveFolder,
  kMove,
  kCopy,
  kLook,  // all that only read
  kLog,
};

// What a call went through; here, too, the same number means something else for each.
enum class Route { kSocket, kWeb, kDirect };

struct ReturnCode {
  int code;
  std::string_view meaning;
  std::string_view advice;  // what the user can do; empty for success
};

// The words for a result of that call; every value has some.
[[nodiscard]] ReturnCode ExplainResult(Call call, Route route, int code);

// Says them on `err`; `subject` is what the call was about, where that is not clear.
void PrintFailure(Call call, Route route, int code, std::ostream& err,
                  std::string_view subject = {});

}  // namespace qv::tool
