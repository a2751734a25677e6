#include "ReturnCodes.h"

#include <fmt/ostream.h>

#include <algorithm>
#include <initializer_list>
#include <iterator>

namespace qv {
namespace {

using Calls = unsigned;  // a set of calls, one bit for each

constexpr Calls SetOf(std::initializer_list<Call> calls) {
  Calls set = 0;
  for (const Call call : calls) set |= 1U << static_cast<unsigned>(call);
  return set;
}

constexpr Calls kRows = SetOf({Call::kQuery, Call::kProcedure});
constexpr Calls kChanges = SetOf({Call::kProcedure, Call::kExec, Call::kBatch});
constexpr Calls kAll = kRows | kChanges;

struct Entry {
  Calls calls;
  ReturnCode words;
};

constexpr Entry kEntries[] = {
    {kAll, {0, "the call succeeded", ""}},
    {kRows,
     {1,
      "there is no answer: the client is offline and the cache does not hold this text, or the "
      "answer could not be read",
      "run it with --cache while the server can be reached, so that its answer is kept; "
      "online, check that the temporary folder can be written and is not full"}},
    {SetOf({Call::kExec}),
     {1, "the server refused the statement",
      "check the statement, the database name (--db) and the access token (--token); the server's "
      "log has its reason"}},
    {kRows,
     {2, "the server's reply lacks fields that belong to it",
      "check that host and port are those of the platform's server and that its version suits this "
      "client"}},
    {SetOf({Call::kBatch}),
     {2, "the server refused the batch and does not say which statement it is about",
      "check the database name (--db), the access token (--token), and that host and port are "
      "those of the platform's server"}},
    {kRows,
     {3, "the server refused the text",
      "check the statement, the database name (--db) and the access token (--token); the server's "
      "log has its reason"}},
    {kRows,
     {10, "the compressed answer could not be unpacked",
      "check that the temporary folder is not full, or have compression switched off on the "
      "server; a procedure that changes data has run, so look before running it again"}},
    {SetOf({Call::kBatch}),
     {kRefusedBatch, "the server refused the batch",
      "check the statement named below, and the database name (--db) when none is; one that is in "
      "order may stand where the batch grew too large to be sent, at about 1 MB; the server's log "
      "has its reason"}},
    {kRows,
     {-1, "nothing reached the server",
      "check --server and --port, and try `qvcall ping`; with --cache, an answer that was kept "
      "earlier is used"}},
    {SetOf({Call::kExec, Call::kBatch}),
     {-1, "nothing reached the server, so nothing was run",
      "check --server and --port, and try `qvcall ping`"}},
    {SetOf({Call::kQuery}),
     {-2, "the request was sent, but no complete reply came",
      "a query changes nothing, so it is safe to try again; allow long queries more time with "
      "--timeout-ms"}},
    {kChanges,
     {-2, "the request was sent, but no complete reply came; it may have been run or not",
      "look at the data before running it again; allow long work more time with --timeout-ms"}},
    {SetOf({Call::kQuery}),
     {-3, "the reply was damaged, or did not fit",
      "try again; if it stays, check the temporary folder and whether something on the way alters "
      "the traffic"}},
    {kChanges,
     {-3, "the reply was damaged, or did not fit; the request may have been run or not",
      "look at the data before running it again; check whether something on the way alters the "
      "traffic"}},
};

constexpr ReturnCode kOther{
    0, "the transport failed with a result of its own",
    "look it up in the transport library's documentation, and try `qvcall ping`"};

}  // namespace

ReturnCode ExplainResult(Call call, int code) {
  const int listed = call == Call::kBatch ? std::min(code, kRefusedBatch) : code;
  const auto* found =
      std::find_if(std::begin(kEntries), std::end(kEntries), [&](const Entry& entry) {
        return (entry.calls & SetOf({call})) != 0 && entry.words.code == listed;
      });
  const ReturnCode& words = found != std::end(kEntries) ? found->words : kOther;
  return {code, words.meaning, words.advice};
}

void PrintFailure(Call call, int code, std::ostream& err) {
  const ReturnCode words = ExplainResult(call, code);
  fmt::print(err, "qvcall: {} (result {})\n  {}\n", words.meaning, code, words.advice);
}

}  // namespace qv
