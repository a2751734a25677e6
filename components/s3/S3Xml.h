// The XML that an S3 server and its clients exchange. The caller limits its length.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qv::components {

// Each reader returns nothing if the text is not what it expects.

// Returns the code of an error, as in "NoSuchKey".
[[nodiscard]] std::optional<std::string> ReadErrorCode(const std::string& xml);

// Returns the text of the element `name` directly below the root element, which must be `root`.
[[nodiscard]] std::optional<std::string> ReadText(const std::string& xml, const char* root,
                                                  const char* name);

struct S3Listing {
  std::vector<std::string> keys;
  // The marker to request the next page with; nothing on the last page.
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

// Returns the error codes of the objects that could not be deleted.
[[nodiscard]] std::optional<std::vector<std::string>> ReadDeleteErrors(const std::string& xml);

// Returns true if XML can contain the key, that is, unless it has control characters.
[[nodiscard]] bool CanStandInXml(const std::string& key);

[[nodiscard]] std::string DeletionXml(const std::vector<std::string>& keys);
[[nodiscard]] std::string CompletionXml(const std::vector<S3Part>& parts);

}  // namespace qv::components
