#include "ReturnCodes.h"

#include <fmt/ostream.h>

#include <algorithm>
#include <initializer_list>
#include <iterator>

#include "DisplayText.h"
#include "qvnetcall/ResultCodes.h"

namespace qv::tool {
namespace {

template <class Enum>
constexpr unsigned SetOf(std::initializer_list<Enum> members) {  // one bit for each
  unsigned set = 0;
  for (const Enum member : members) set |= 1U << static_cast<unsigned>(member);
  return set;
}

constexpr unsigned kExec = SetOf({Call::kExec});
constexpr unsigned kBatch = SetOf({Call::kBatch});
constexpr unsigned kRows = SetOf({Call::kQuery, Call::kProcedure});
constexpr unsigned kChanges = SetOf({Call::kProcedure, Call::kExec, Call::kBatch});
constexpr unsigned kAll = kRows | kChanges;

constexpr unsigned kFiles = SetOf({Call::kUpload, Call::kDownload, Call::kRemove});
constexpr unsigned kStoreChanges =
    SetOf({Call::kMakeFolder, Call::kRemoveFolder, Call::kMove, Call::kCopy, Call::kLog});
constexpr unsigned kStore = kStoreChanges | SetOf({Call::kLook});

constexpr unsigned kSocket = SetOf({Route::kSocket});
constexpr unsigned kWeb = SetOf({Route::kWeb});
constexpr unsigned kDirect = SetOf({Route::kDirect});
constexpr unsigned kServer = kSocket | kWeb;

struct Entry {
  unsigned calls;
  unsigned routes;
  ReturnCode words;
};

constexpr Entry kEntries[] = {
    {kAll, kServer | kDirect, {result::kSuccess, "the call succeeded", ""}},
    {kRows,
     kSocket,
     {result::kFailed,
      "there is no answer: the client is offline and the cache does not hold this text, or the "
      "answer could not be read",
      "run it with --cache while the server can be reached, so that its answer is kept; "
      "online, check that the temporary folder can be written and is not full"}},
    {kRows,
     kWeb,
     {result::kFailed, "the server's answer could not be read",
      "check that the temporary folder can be written and is not full, and that host and port are "
      "those of the platform's web server"}},
    {kRows,
     kDirect,
     {result::kFailed, "the database refused the text, or its answer could not be taken",
      "check the statement"}},
    {kExec,
     kServer,
     {result::kFailed, "the server refused the statement",
      "check the statement, the database name (--db) and the access token (--token); the server's "
      "log has its reason"}},
    {kExec,
     kDirect,
     {result::kFailed, "the database refused the statement", "check the statement"}},
    {kRows,
     kServer,
     {result::kReplyUnreadable, "the server's reply lacks fields that belong to it",
      "check that host and port are those of the platform's server and that its version suits this "
      "client"}},
    {kBatch,
     kServer,
     {result::kReplyUnreadable,
      "the server refused the batch and does not say which statement it is about",
      "check the database name (--db), the access token (--token), and that host and port are "
      "those of the platform's server"}},
    {kRows,
     kServer,
     {result::kQueryRefused, "the server refused the text",
      "check the statement, the database name (--db) and the access token (--token); the server's "
      "log has its reason"}},
    {kRows,
     kServer,
     {result::kUnpackFailed, "the compressed answer could not be unpacked",
      "check that the temporary folder is not full, or have compression switched off on the "
      "server; a procedure that changes data has run, so look before running it again"}},
    {kBatch,
     kServer,
     {result::kBatchRefused, "the server refused the batch",
      "check the statement named below, and the database name (--db) when none is; the server's "
      "log has its reason"}},
    {kRows,
     kSocket,
     {result::kNotDelivered, "nothing reached the server",
      "check --server and --port, and try `qvcall ping`; with --cache, an answer that was kept "
      "earlier is used"}},
    {kRows,
     kWeb,
     {result::kNotDelivered, "nothing reached the server",
      "check --server and --http-port and, for https://, the server's certificate and --ca-file; "
      "try `qvcall --web ping`"}},
    {kExec | kBatch,
     kSocket,
     {result::kNotDelivered, "nothing reached the server, so nothing was run",
      "check --server and --port, and try `qvcall ping`; a request of more than 64 MB is not "
      "sent"}},
    {kExec,
     kWeb,
     {result::kNotDelivered, "nothing reached the server, so nothing was run",
      "check --server and --http-port and, for https://, the server's certificate and --ca-file; "
      "try `qvcall --web ping`; a request of more than 64 MB is not sent"}},
    {kBatch,
     kDirect,
     {result::kNoLocalBatch, "a database without a server takes no batches, so nothing was run",
      "run the statements one by one with exec"}},
    {SetOf({Call::kQuery}),
     kServer,
     {result::kOutcomeUnknown, "the request was sent, but no complete reply came",
      "a query changes nothing, so it is safe to try again; allow long queries more time with "
      "--timeout-ms"}},
    {kChanges,
     kServer,
     {result::kOutcomeUnknown,
      "the request was sent, but no complete reply came; it may have been run or not",
      "look at the data before running it again; allow long work more time with --timeout-ms"}},
    {SetOf({Call::kQuery}),
     kSocket,
     {result::kBadReply, "the reply was damaged, or did not fit",
      "try again; if it stays, check the temporary folder and whether something on the way alters "
      "the traffic"}},
    {kChanges,
     kSocket,
     {result::kBadReply,
      "the reply was damaged, or did not fit; the request may have been run or not",
      "look at the data before running it again; check whether something on the way alters the "
      "traffic"}},
    {SetOf({Call::kQuery}),
     kWeb,
     {result::kBadReply,
      "the reply is not that of the platform's web server, was damaged, or did not fit",
      "check --server and --http-port, the temporary folder, and whether something on the way "
      "alters the traffic"}},
    {kChanges,
     kWeb,
     {result::kBadReply,
      "the reply is not that of the platform's web server, was damaged, or did not fit; the "
      "request may have been run or not",
      "check --server and --http-port, and look at the data before running it again"}},
    {kFiles, kSocket, {result::kSuccess, "the call succeeded", ""}},
    {SetOf({Call::kUpload}),
     kSocket,
     {result::kTransferRefused, "the server did not take the file",
      "check its name, that its folder is there and has no folder of that name, that the server's "
      "disk is not full, and the access token (--token); the server's log has its reason"}},
    {SetOf({Call::kRemove}),
     kSocket,
     {result::kTransferRefused, "the server did not remove it",
      "see with `qvcall ls` whether there is such a file; folders are removed with rmdir"}},
    {SetOf({Call::kDownload}),
     kSocket,
     {result::kTransferRefused, "the server refused it",
      "check the name and the access token (--token)"}},
    {SetOf({Call::kDownload}),
     kSocket,
     {result::kDownloadFailed, "the server has no such file, or cannot send it",
      "see with `qvcall ls` or `qvcall idstat` what there is"}},
    {kFiles | kStore,
     kSocket,
     {result::kNotDelivered, "nothing reached the server",
      "check --server and --port, and try `qvcall ping`"}},
    {SetOf({Call::kUpload}),
     kSocket,
     {result::kOutcomeUnknown,
      "the file was sent, but no complete reply came; the server has it or what it had before",
      "try again; give a slow server more time with --timeout-ms"}},
    {SetOf({Call::kDownload}),
     kSocket,
     {result::kOutcomeUnknown, "the file did not come whole",
      "try again; give a slow server more time with --timeout-ms"}},
    {SetOf({Call::kRemove}),
     kSocket,
     {result::kOutcomeUnknown,
      "the request was sent, but no complete reply came; the file may be gone or not",
      "see with `qvcall ls`"}},
    {SetOf({Call::kDownload}),
     kSocket,
     {result::kBadReply, "the file came damaged, or cannot be written here",
      "check that the folder can be written and is not full, and try again"}},
    {SetOf({Call::kUpload, Call::kRemove}),
     kSocket,
     {result::kBadReply, "the reply was damaged; the server has done it or not",
      "see with `qvcall stat`; check whether something on the way alters the traffic"}},
    {kStore, kSocket, {1, "the call succeeded", ""}},
    {SetOf({Call::kMakeFolder}),
     kSocket,
     {0, "the folder was not made",
      "there may be something of that name, or no folder to make it in: see with `qvcall ls`"}},
    {SetOf({Call::kRemoveFolder}),
     kSocket,
     {0, "the folder was not removed",
      "only folders that are there and empty are: see with `qvcall ls`"}},
    {SetOf({Call::kMove}),
     kSocket,
     {0, "it was not moved",
      "there may be no such file or folder, or the new name be taken, or its folder missing: see "
      "with `qvcall ls`"}},
    {SetOf({Call::kCopy}),
     kSocket,
     {0, "it was not copied",
      "there may be no such file, or no folder for the copy: see with `qvcall ls`; folders are not "
      "copied"}},
    {SetOf({Call::kLook}),
     kSocket,
     {0, "the server has no such thing, or does not show it",
      "check the name and the access token (--token); the server's log has its reason"}},
    {SetOf({Call::kLog}),
     kSocket,
     {0, "the server did not take the line", "check the access token (--token)"}},
};

constexpr ReturnCode kOther{0, "the call failed with a result that has no words here",
                            "when a transport library is not the one that came with this tool, "
                            "look into its documentation"};

}  // namespace

ReturnCode ExplainResult(Call call, Route route, int code) {
  const int listed = call == Call::kBatch ? std::min(code, result::kBatchRefused) : code;
  const auto* found =
      std::find_if(std::begin(kEntries), std::end(kEntries), [&](const Entry& entry) {
        return (entry.calls & SetOf({call})) != 0 && (entry.routes & SetOf({route})) != 0 &&
               entry.words.code == listed;
      });
  const ReturnCode& words = found != std::end(kEntries) ? found->words : kOther;
  return {code, words.meaning, words.advice};
}

void PrintFailure(Call call, Route route, int code, std::ostream& err, std::string_view subject) {
  const ReturnCode words = ExplainResult(call, route, code);
  const std::string about = subject.empty() ? "" : Visible(subject) + ": ";
  fmt::print(err, "qvcall: {}{} (result {})\n  {}\n", about, words.meaning, code, words.advice);
}

}  // namespace qv::tool
