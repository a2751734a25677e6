// Paths of a cloud store, requests about them, and the server that the requests go to.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qv::components {

// "bucket/key"; slashes at the start of what a caller writes are dropped.
struct S3Path {
  std::string bucket;
  std::string key;

  // One object; nothing when the text can name none.
  [[nodiscard]] static std::optional<S3Path> OfObject(std::string_view path);
  // The objects below a folder; the key ends with a slash. Nothing for a bare bucket, too, whose
  // deletion would be a slip of the hand.
  [[nodiscard]] static std::optional<S3Path> OfFolder(std::string_view path);

  bool operator==(const S3Path&) const = default;
};

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

class S3Endpoint {
 public:
  // `host` is a name or an address, with "http://" or "https://" before it if it likes; without,
  // it is https, whatever the port. Port 0 is the scheme's own. Of `style`, 0 has buckets in the
  // path and 1 in the host name. Nothing when it is no such thing.
  [[nodiscard]] static std::optional<S3Endpoint> Parse(std::string_view host, std::uint16_t port,
                                                       long style);

  // `request` with an address, unsigned. Nothing when its bucket cannot be part of one.
  [[nodiscard]] std::optional<S3Wire> Address(const S3Request& request) const;

 private:
  std::string scheme_;
  std::string host_;
  std::string port_;  // as it is appended to a host: empty or ":9000"
  bool is_bucket_in_host_ = false;
};

}  // namespace qv::components
