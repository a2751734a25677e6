// Parameters of the HTTP transport library that is built here. They are an extension: another HTTP
// transport need not have them, so a program that can do without them looks the function up by name
// at run time.
#pragma once

#include "qvnetcall/Export.h"

extern "C" {

// Sets a parameter of the HTTP transport for the calls that follow, on all threads. The caller
// keeps owning both texts. Any thread may call. Returns 1. Returns 0 and changes nothing if a text
// is null, the name is unknown or the value is not allowed.
//
//   name                values
//   token               up to 4096 bytes: the access token that is sent with every request
//   tls                 "1": https, whatever the server's name says; "0": as the name says
//   ca_file             a PEM file of trusted CA certificates; empty: the system's
//   connect_timeout_ms  1 to 3600000: for name lookup, connecting and the TLS handshake together
//   io_timeout_ms       1 to 3600000: for a stretch without progress
QVNETCALL_API int HttpworkSetParameter(const char* name, const char* value);
}
