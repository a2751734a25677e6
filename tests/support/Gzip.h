// Packed bytes for tests.
#pragma once

#include <string>

namespace qv {

// A gzip file of one member that holds `text`.
std::string Gzipped(const std::string& text);

}  // namespace qv
