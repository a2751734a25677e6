#include "ReturnCodes.h"

#include <fmt/format.h>

#include <algorithm>
#include <initializer_list>
#include <iterator>

#include "DisplayText.h"
#include "qvnetcall/ResultCodes.h"

namespace qv::tool {
namespace {

template <class Enum>
constexpr unsigned SetOf(std::initializer_list<Enum> members) {  // one bit per member
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
constexpr unsigned kStore = kStoreChanges | SetOf({Call::kLook, Call::kLookInside});

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
      "there is no answer: the client is offline and the cache has no answer to this text, or the "
      "answer could not be read",
      "check that the temporary folder can be written and is not full; offline, only an answer "
      "that --cache stored earlier is there"}},
    {kRows,
     kWeb,
     {result::kFailed, "the server's answer could not be read",
      "check that the temporary folder can be written and is not full, and that host and port are "
      "those of the platform's web server"}},
    {kRows,
     kDirect,
     {result::kFailed, "the database refused the text, or its answer could not be read",
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
      "the server refused the batch and does not say which statement caused it",
      "check the database name (--db), the access token (--token), and that host and port are "
      "those of the platform's server"}},
    {kRows,
     kServer,
     {result::kQueryRefused, "the server refused the text",
      "check the statement, the database name (--db) and the access token (--token); the server's "
      "log has its reason"}},
    {kRows,
     kServer,
     {result::kUnpackFailed, "the compressed answer could not be decompressed",
      "check that the temporary folder is not full, or have compression switched off on the "
      "server; a procedure that changes data has run, so check the data before running it again"}},
    {kBatch,
     kServer,
     {result::kBatchRefused, "the server refused the batch",
      "check the statement named below, or the database name (--db) if none is; the server's "
      "log has its reason"}},
    {kRows,
     kSocket,
     {result::kNotDelivered, "nothing reached the server",
      "check --server and --port, and try `qvcall ping`; with --cache, an answer that was stored "
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
     {result::kNoLocalBatch,
      "a database without a server does not support batches, so nothing was run",
      "run the statements one by one with exec"}},
    {SetOf({Call::kQuery}),
     kServer,
     {result::kOutcomeUnknown, "the request was sent, but no complete reply came",
      "a query changes nothing, so it is safe to try again; allow long queries more time with "
      "--timeout-ms"}},
    {kChanges,
     kServer,
     {result::kOutcomeUnknown,
      "the request was sent, but no complete reply came; it may or may not have been run",
      "check the data before running it again; allow long work more time with --timeout-ms"}},
    {SetOf({Call::kQuery}),
     kSocket,
     {result::kBadReply, "the reply was damaged, or did not fit",
      "try again; if the failure persists, check the temporary folder and whether something on the "
      "network alters the traffic"}},
    {kChanges,
     kSocket,
     {result::kBadReply,
      "the reply was damaged, or did not fit; the request may or may not have been run",
      "check the data before running it again; check whether something on the network alters the "
      "traffic"}},
    {SetOf({Call::kQuery}),
     kWeb,
     {result::kBadReply,
      "the reply is not that of the platform's web server, was damaged, or did not fit",
      "check --server and --http-port, the temporary folder, and whether something on the network "
      "alters the traffic"}},
    {kChanges,
     kWeb,
     {result::kBadReply,
      "the reply is not that of the platform's web server, was damaged, or did not fit; the "
      "request may have been run or not",
      "check --server and --http-port, and check the data before running it again"}},
    {kFiles, kSocket, {result::kSuccess, "the call succeeded", ""}},
    {SetOf({Call::kUpload}),
     kSocket,
     {result::kTransferRefused, "the server did not accept the file",
      "check its name, that its folder exists and has no folder of that name, that the server's "
      "disk is not full, and the access token (--token); the server's log has its reason"}},
    {SetOf({Call::kRemove}),
     kSocket,
     {result::kTransferRefused, "the server did not remove it",
      "check with `qvcall ls` that the file exists; folders are removed with rmdir"}},
    {SetOf({Call::kDownload}),
     kSocket,
     {result::kTransferRefused, "the server refused the download",
      "check the name and the access token (--token)"}},
    {SetOf({Call::kDownload}),
     kSocket,
     {result::kDownloadFailed, "the server has no such file, or cannot send it",
      "check with `qvcall ls` or `qvcall idstat` that it exists"}},
    {kFiles | kStore,
     kSocket,
     {result::kNotDelivered, "nothing reached the server",
      "check --server and --port, and try `qvcall ping`"}},
    {SetOf({Call::kUpload}),
     kSocket,
     {result::kOutcomeUnknown,
      "the file was sent, but no complete reply came; the server has either this file or what it "
      "had before",
      "try again; give a slow server more time with --timeout-ms"}},
    {SetOf({Call::kDownload}),
     kSocket,
     {result::kOutcomeUnknown, "the file did not arrive completely",
      "try again; give a slow server more time with --timeout-ms"}},
    {SetOf({Call::kRemove}),
     kSocket,
     {result::kOutcomeUnknown,
      "the request was sent, but no complete reply came; the file may or may not have been removed",
      "check with `qvcall ls`"}},
    {SetOf({Call::kDownload}),
     kSocket,
     {result::kBadReply, "the file arrived damaged, or cannot be written here",
      "check that the folder can be written and is not full, and try again"}},
    {SetOf({Call::kUpload, Call::kRemove}),
     kSocket,
     {result::kBadReply,
      "the reply was damaged; the server may or may not have carried out the request",
      "check with `qvcall stat`; check whether something on the network alters the traffic"}},
    {kStore, kSocket, {1, "the call succeeded", ""}},
    {SetOf({Call::kMakeFolder}),
     kSocket,
     {0, "the folder was not created",
      "something of that name may exist, or the folder above it may be missing: check with `qvcall "
      "ls`"}},
    {SetOf({Call::kRemoveFolder}),
     kSocket,
     {0, "the folder was not removed",
      "only existing, empty folders can be removed: check with `qvcall ls`"}},
    {SetOf({Call::kMove}),
     kSocket,
     {0, "it was not moved",
      "the file or folder may not exist, the new name may be taken, or its folder may be missing: "
      "check with `qvcall ls`"}},
    {SetOf({Call::kCopy}),
     kSocket,
     {0, "it was not copied",
      "the file, or the folder for the copy, may not exist: check with `qvcall ls`; folders are "
      "not copied"}},
    {SetOf({Call::kLook, Call::kLookInside}),
     kSocket,
     {0, "the server has no such entry, or does not show it",
      "check the name and the access token (--token); the server's log has its reason"}},
    {SetOf({Call::kLog}),
     kSocket,
     {0, "the server did not accept the line", "check the access token (--token)"}},
};

constexpr ReturnCode kOther{0, "the call failed with a result that this tool does not know",
                            "if a transport library is not the one that came with this tool, "
                            "see its documentation"};

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

namespace {

// Whether nobody knows if the call changed what it should change.
bool IsDoubtful(Call call, int code) {
  const bool changes = (kChanges & SetOf({call})) != 0 || call == Call::kRemove;
  return changes && (code == result::kOutcomeUnknown || code == result::kBadReply);
}

// Returns what the user can do about a failure whose reason was printed, or an empty text if the
// reason says enough.
std::string Hint(Call call, Route route, int code, const Reason& reason) {
  const ReturnCode words = ExplainResult(call, route, code);
  const bool names_log = reason.text.find("server's log") != std::string::npos;
  switch (reason.error_class) {
    case error::kUnknownDatabase:
      return "check the name of the database (--db)";
    case error::kBadToken:
      return "check the access token (--token or QVCALL_TOKEN)";
    case error::kBusy:
      return "nothing was done; try again later";
    case error::kInternal:
      return names_log ? "" : "the server's log may say more";
    case error::kCancelled:
      return IsDoubtful(call, code) ? "it may or may not have been run: check the data" : "";
    case error::kCannotConnect:
      return route == Route::kWeb ? "check --server, --http-port and, for https://, --ca-file"
                                  : "check --server and --port";
    case error::kNoProgress:
    case error::kConnectionLost:
    case error::kBadReply:
      return (IsDoubtful(call, code) ? std::string(words.meaning) + "\n  " : std::string())
          .append(words.advice);
    default:
      return "";
  }
}

}  // namespace

Failure DescribeFailure(Call call, Route route, int code, const Reason& reason) {
  const ReturnCode words = ExplainResult(call, route, code);
  const bool is_known = !reason.text.empty();
  std::string what = is_known ? Visible(reason.text) : std::string(words.meaning);
  // A look is several calls, and the last of them says only what it looked for.
  if (call == Call::kLook && reason.error_class == error::kUnknownObject) {
    what = "the server has no such entry";
  }
  // 0 has no meaning of its own: some calls succeed with it, others fail.
  if (code != 0) what += fmt::format(" (result {})", code);
  return {std::move(what), is_known ? Hint(call, route, code, reason) : std::string(words.advice)};
}

}  // namespace qv::tool
