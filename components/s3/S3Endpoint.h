// Paths in a cloud store, requests, and the server that they go to.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qv::components {

// "bucket/key"; leading slashes are ignored.
struct S3Path {
  std::string bucket;
  std::string key;

  // The path of one object. Returns nothing if the text is not valid.
  [[nodiscard]] static std::optional<S3Path> OfObject(std::string_view path);
  // The path of a folder; its key ends with a slash. Also returns nothing for a bare bucket, since
  // deleting that would be an accident.
  [[nodiscard]] static std::optional<S3Path> OfFolder(std::string_view path);

  bool operator==(const S3Path&) const = default;
};

using TextPairs = std::vector<std::pair<std::string, std::string>>;

// A request before it is addressed. Nothing is encoded.
struct S3Request {
  std::string method = "GET";
  std::string bucket = {};  // empty for the service itself
  std::string key = {};     // empty for the bucket itself
  TextPairs query = {};
  TextPairs headers = {};  // lower-case names; values without extra white space
};

// The request as it is sent: path and query are encoded, and the query is in the order in which it
// is signed, so that the server cannot interpret it differently.
struct S3Wire {
  std::string method;
  std::string scheme;  // "http" or "https"
  std::string host;    // the Host header: with the port unless it is the default
  std::string path;
  std::string query;
  TextPairs headers;

  [[nodiscard]] std::string Url() const {
    return scheme + "://" + host + path + (query.empty() ? "" : "?" + query);
  }
};

class S3Endpoint {
 public:
  // Parses a server. `host` is a name or an address, optionally after "http://" or "https://";
  // https is the default, whatever the port. Port 0 is the default of the scheme. `style` 0 puts
  // the bucket into the path and 1 into the host name. Returns nothing if an argument is invalid.
  [[nodiscard]] static std::optional<S3Endpoint> Parse(std::string_view host, std::uint16_t port,
                                                       long style);

  // Returns `request` with an address, unsigned. Returns nothing if its bucket cannot be part of an
  // address.
  [[nodiscard]] std::optional<S3Wire> Address(const S3Request& request) const;

 private:
  std::string scheme_;
  std::string host_;
  std::string port_;  // what is appended to the host: empty, or as in ":9000"
  bool is_bucket_in_host_ = false;
};

}  // namespace qv::components
