// Whom a transfer trusts.
#pragma once

#include <curl/curl.h>

#include <string>

namespace qv::curl {

// Has the handle verify certificates by the authorities in `ca_file` (in PEM; empty: the system's),
// and go straight to the server that it is for: by no redirect, by no proxy and with no password
// that the environment names. False when there is no memory.
[[nodiscard]] bool SetUpTrust(CURL* easy, const std::string& ca_file);

}  // namespace qv::curl
