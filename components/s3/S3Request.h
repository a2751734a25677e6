// One request to an S3 server, before and after it has an address.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace qv::components {

using TextPairs = std::vector<std::pair<std::string, std::string>>;

// What a request is about. Nothing here is encoded.
struct S3Request {
  std::string method = "GET";
  std::string bucket = {};  // empty: the service as such
  std::string key = {};     // empty: the bucket as such
  TextPairs query = {};
  TextPairs headers = {};  // names in lower case; values without white space around or runs of it
};

// The same as it goes out: the path and the query encoded, the query's pairs in the order in which
// they are signed, and nothing left that a server could read in another way.
struct S3Wire {
  std::string method;
  std::string scheme;  // "http" or "https"
  std::string host;  // as the header of that name has it, with the port unless it is the usual one
  std::string path;
  std::string query;
  TextPairs headers;

  [[nodiscard]] std::string Url() const {
    return scheme + "://" + host + path + (query.empty() ? "" : "?" + query);
  }
};

}  // namespace qv::components
