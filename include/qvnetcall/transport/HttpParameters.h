// An extension of the HTTP transport library that is built here: its parameters. Another transport
// need not have it, so a program that can do without looks it up by name at run time.
#pragma once

#include "qvnetcall/Export.h"

extern "C" {

// Sets a parameter of the HTTP transport for the calls that follow, in all threads; both texts stay
// the caller's. Any thread. 1, or 0 and no change for an unknown name or a value that it cannot
// have.
//
//   name                values
//   token               up to 4096 bytes; the access token that travels with every request
//   tls                 "1": https whatever the server's name says; "0": as the name says
//   ca_file             a file of certificates of authorities, in PEM; empty: the system's
//   connect_timeout_ms  1 to 3600000: looking up the name, connecting, agreeing on TLS, together
//   io_timeout_ms       1 to 3600000: a stretch without progress
QVNETCALL_API int HttpworkSetParameter(const char* name, const char* value);
}
