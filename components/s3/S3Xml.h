// The XML that an S3 server and its clients exchange. Whoever receives it bounds its length.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qv::components {

// Each reader gives nothing when the text is something else than it looks for.

// The code of an error, as in "NoSuchKey".
[[nodiscard]] std::optional<std::string> ReadErrorCode(const std::string& xml);

// The text of the element `name` right below the root, which is `root`.
[[nodiscard]] std::optional<std::string> ReadText(const std::string& xml, const char* root,
                                                  const char* name);

struct S3Listing {
  std::vector<std::string> keys;
  // What the next page is asked for by; nothing after the last.
  std::optional<std::string> next;
};
[[nodiscard]] std::optional<S3Listing> ReadListing(const std::string& xml);

struct S3Part {
  int number = 0;
  std::uint64_t bytes = 0;
  std::string etag;
};
struct S3PartListing {
  std::vector<S3Part> parts;
  std::optional<std::string> next;
};
[[nodiscard]] std::optional<S3PartListing> ReadParts(const std::string& xml);

// The error codes of the objects that a deletion of many did not delete.
[[nodiscard]] std::optional<std::vector<std::string>> ReadDeleteErrors(const std::string& xml);

// Whether XML can hold a key at all: of the control characters it cannot.
[[nodiscard]] bool CanStandInXml(const std::string& key);

[[nodiscard]] std::string DeletionXml(const std::vector<std::string>& keys);
[[nodiscard]] std::string CompletionXml(const std::vector<S3Part>& parts);

}  // namespace qv::components
