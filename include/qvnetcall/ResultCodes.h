// The result codes of the transfer components that are built here, beside 0 for success. A
// component that replaces one may have others.
#pragma once

enum QvTransferResult : int {
  QvTransfer_Success = 0,
  // 1 is left out: the question about one file means success by it.
  QvTransfer_NotLoggedIn = 2,    // no server was named, or the last login failed
  QvTransfer_BadArgument = 3,    // a text that cannot be a host, a path or a bucket
  QvTransfer_CannotConnect = 4,  // no such host, nobody listens, or no agreement on TLS
  QvTransfer_LoginRefused = 5,   // the name or the password is wrong
  QvTransfer_NotTrusted = 6,     // the server's certificate cannot be verified
  QvTransfer_NotFound = 7,       // the server has no such file
  QvTransfer_Refused = 8,        // the server will not have it: no right, no room, no such command
  QvTransfer_Broken = 9,         // the connection was lost or stood still, each time it was tried
  QvTransfer_LocalFile = 10,     // the local file cannot be read or written
  QvTransfer_BadAnswer = 11,     // the server's answer makes no sense, or the file came out wrong
  QvTransfer_Stopped = 12,       // the progress callback said so
};
