// The use of the library's query cache: answers of a server that are stored for the time when it
// cannot be reached. The library knows a server by its name only, so each server and port gets a
// folder of its own here.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

#include "qvnetcall/framework/String.h"
#include "tools/qvcall/options/CommandLine.h"
#include "tools/qvcall/session/Session.h"

namespace qv::tool {

// Returns the name of the folder for a server's answers. Names of servers that differ only in the
// case of letters share one. Bytes that cannot be part of a file's name on every system are spelt
// out ("%3a").
[[nodiscard]] std::string CacheFolderName(std::string_view server, int port);

// Returns an age for people, such as "3 minutes": in the largest unit of which there is at least
// one, rounded down.
[[nodiscard]] std::string AgeText(std::int64_t seconds);

// Lets the session's queries use the cache, and no server if the options say so. Returns false,
// with the reason on `err`, if the options cannot be obeyed.
[[nodiscard]] bool PrepareCache(const Session& session, const QueryOptions& options,
                                std::ostream& err);

// Tells how old the answer to `text` is if it came from the cache.
void PrintAge(const Session& session, const QueryOptions& options, const CString& text,
              std::ostream& err);

// Tells that there is no answer to `text` if the call failed because of that. Returns false and
// prints nothing if it did not.
[[nodiscard]] bool PrintMissingAnswer(const Session& session, const QueryOptions& options,
                                      const CString& text, int code, std::ostream& err);

}  // namespace qv::tool
