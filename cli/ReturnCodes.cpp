#include "ReturnCodes.h"

#include <algorithm>
#include <iterator>

namespace qv {
namespace {

constexpr ReturnCode kCodes[] = {
    {0, "the query succeeded", ""},
    {1,
     "there is no answer: the client is offline and the cache does not hold this query, or the "
     "answer could not be read",
     "run the query with --cache while the server can be reached, so that its answer is kept; "
     "online, check that the temporary folder can be written and is not full"},
    {2, "the server's reply lacks fields that belong to it",
     "check that host and port are those of the platform's server and that its version suits this "
     "client"},
    {3, "the server refused the query",
     "check the statement, the database name (--db) and the access token (--token); the server's "
     "log has its reason"},
    {10, "the compressed answer could not be unpacked",
     "try again; if it stays, check that the temporary folder is not full, or have compression "
     "switched off on the server"},
    {-1, "nothing reached the server",
     "check --server and --port, and try `qvcall ping`; with --cache, an answer that was kept "
     "earlier is used"},
    {-2, "the request was sent, but no complete reply came",
     "a query changes nothing, so it is safe to try again; allow long queries more time with "
     "--timeout-ms"},
    {-3, "the reply was damaged, or did not fit",
     "try again; if it stays, check the temporary folder and whether something on the way alters "
     "the traffic"},
};

constexpr ReturnCode kOther{
    0, "the transport failed with a result of its own",
    "look it up in the transport library's documentation, and try `qvcall ping`"};

}  // namespace

ReturnCode ExplainQueryResult(int code) {
  const auto* found = std::find_if(std::begin(kCodes), std::end(kCodes),
                                   [code](const ReturnCode& entry) { return entry.code == code; });
  if (found != std::end(kCodes)) return *found;
  return {code, kOther.meaning, kOther.advice};
}

}  // namespace qv
