// Names for the values that hosts compare: results, cache states, kinds of servers. The comment on
// each call says which results it returns, and when. Most calls that are not named here return 1 or
// a count for success, and 0 or null for failure.
#pragma once

namespace qv::result {

// Success of CRvoDatabase's queries and statements, of CRvoFile's and CRvoIdFile's uploads,
// downloads and deletions, of CRvoIdFile::CopyIdFile, and of the calls of CRvoFtp and
// CRvoCloudStorage.
inline constexpr int kSuccess = 0;

// CRvoDatabase's queries and statements.
inline constexpr int kFailed = 1;           // nothing was read, or the statement was not run
inline constexpr int kReplyUnreadable = 2;  // the reply lacks fields that belong to it
inline constexpr int kQueryRefused = 3;     // the server refused the query
inline constexpr int kUnpackFailed = 10;    // the compressed answer could not be unpacked
inline constexpr int kBatchRefused = 100;   // plus the server's number for the failed statement
inline constexpr int kNoLocalBatch = -1;    // local mode does not support batches

// CRvoFile's and CRvoIdFile's uploads, downloads and deletions, and CRvoIdFile::CopyIdFile.
inline constexpr int kTransferRefused = 1;  // the server refused
inline constexpr int kDownloadFailed = 2;   // the server reported that the download failed
inline constexpr int kCopyFailed = -1;      // the server refused the copy and gave no code

// The transports; all of the calls above pass these on.
inline constexpr int kNotDelivered = -1;    // nothing reached the server
inline constexpr int kOutcomeUnknown = -2;  // the request was sent, but no complete reply came
inline constexpr int kBadReply = -3;        // the reply, or the file with it, could not be used

// CRvoFtp and CRvoCloudStorage; their other results are those of the component.
inline constexpr int kNoComponent = -100;  // the component could not be created
inline constexpr int kFileSucceeded = 1;   // only of IsOperatorFileSuc

}  // namespace qv::result

// Why a call failed, as CRvoServer::GetLastErrorClass gives it and as the replacement transports
// carry it. A result says what a host may do next; a class says what went wrong. New classes may be
// added; treat one that you do not know as kInternal.
namespace qv::error {

enum Class : int {
  kNone = 0,  // the call did not fail, or nobody gave a reason

  // The server gives these, and in direct access the database.
  kSyntax = 1,           // the statement cannot be parsed
  kUnknownObject = 2,    // no such table, column, procedure, function, file or record
  kUnknownDatabase = 3,  // the server has no database of this name
  kNotAllowed = 4,       // the server does not permit this call or statement
  kConstraint = 5,       // a key, a check or another rule of the data would be violated
  kTimeLimit = 6,        // the call exceeded the server's time limit
  kBusy = 7,             // the server, or what the call needs there, has no place left
  kTooLarge = 8,         // the request or the answer exceeds a limit
  kBadToken = 9,         // the access token or the login token is missing or wrong
  kInternal = 10,        // any other failure of the server

  // This side gives these.
  kCannotConnect = 20,   // no connection, or TLS could not be negotiated
  kNoProgress = 21,      // nothing arrived or was accepted for the whole time limit
  kConnectionLost = 22,  // the connection ended or failed in the middle of the call
  kBadReply = 23,        // the reply makes no sense, or cannot be stored
  kCancelled = 24,       // CRvoCancel, or a progress call, cancelled the call
  kOffline = 25,         // offline, and the cache has no answer
  kLocal = 26            // a file, a database or an argument on this side
};

}  // namespace qv::error

// What CRvoServer::SetCacheState takes and CRvoServer::GetCacheState returns.
namespace qv::cache_state {

inline constexpr int kOnline = 0;
inline constexpr int kOfflineByChoice = 1;
inline constexpr int kNetworkBad = 2;

}  // namespace qv::cache_state

// What CRvoServer::GetServerType gives. Only kWeb, compared without regard to case, means the HTTP
// transport; every other text means the socket transport.
namespace qv::server_type {

inline constexpr char kSocket[] = "TCP_IP";
inline constexpr char kWeb[] = "WEB_IIS";

}  // namespace qv::server_type

// The results of the transfer components that are built here. A component that replaces one may
// have others. The value 1 is not used, because it means success when IsOperatorFileSuc returns it.
enum QvTransferResult : int {
  QvTransfer_Success = 0,
  QvTransfer_NotLoggedIn = 2,    // no server was named, or the last login failed
  QvTransfer_BadArgument = 3,    // a text cannot be a host, a path or a bucket
  QvTransfer_CannotConnect = 4,  // no such host, no listener, or TLS could not be negotiated
  QvTransfer_LoginRefused = 5,   // the name or the password is wrong
  QvTransfer_NotTrusted = 6,     // the server's certificate cannot be verified
  QvTransfer_NotFound = 7,       // the server has no such file
  QvTransfer_Refused = 8,        // the server refused: no permission, no space, no such command
  QvTransfer_Broken = 9,         // the connection was lost or stalled at every attempt
  QvTransfer_LocalFile = 10,     // the local file cannot be read or written
  QvTransfer_BadAnswer = 11,     // the server's answer makes no sense, or the file arrived wrong
  QvTransfer_Stopped = 12,       // the progress callback stopped the run
};
