#include "S3Xml.h"

#include <algorithm>
#include <pugixml.hpp>
#include <string_view>

#include "base/text/Numbers.h"
#include "base/text/Percent.h"

namespace qv::components {

namespace {

// The parser ignores document types, so it expands no entities that a server defines. Its memory
// use is proportional to the text, whatever it contains.
class Answer {
 public:
  Answer(const std::string& xml, const char* root) {
    if (document_.load_buffer(xml.data(), xml.size(), pugi::parse_default | pugi::parse_ws_pcdata,
                              pugi::encoding_utf8)) {
      root_ = document_.child(root);
    }
  }
  [[nodiscard]] bool IsThere() const { return !root_.empty(); }
  [[nodiscard]] pugi::xml_node Root() const { return root_; }

 private:
  pugi::xml_document document_;
  pugi::xml_node root_;
};

// Returns the marker for the next page, or nothing on the last page. The marker is empty if the
// server omits it.
std::optional<std::string> NextPage(const pugi::xml_node& root, const char* name) {
  if (std::string_view(root.child_value("IsTruncated")) != "true") return std::nullopt;
  return root.child_value(name);
}

std::optional<S3Part> PartIn(const pugi::xml_node& node) {
  const auto number = text::ParseNumber<int>(node.child_value("PartNumber"));
  const auto bytes = text::ParseNumber<std::uint64_t>(node.child_value("Size"));
  S3Part part{.etag = node.child_value("ETag")};
  if (!number || !bytes || part.etag.empty()) return std::nullopt;
  part.number = *number;
  part.bytes = *bytes;
  return part;
}

std::string Escaped(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

}  // namespace

std::optional<std::string> ReadErrorCode(const std::string& xml) {
  return ReadText(xml, "Error", "Code");
}

std::optional<std::string> ReadText(const std::string& xml, const char* root, const char* name) {
  const Answer answer(xml, root);
  const pugi::xml_node node = answer.Root().child(name);
  if (node.empty()) return std::nullopt;
  return node.child_value();
}

std::optional<S3Listing> ReadListing(const std::string& xml) {
  const Answer answer(xml, "ListBucketResult");
  if (!answer.IsThere()) return std::nullopt;
  const pugi::xml_node root = answer.Root();
  const bool is_encoded = std::string_view(root.child_value("EncodingType")) == "url";
  S3Listing listing;
  for (const pugi::xml_node& object : root.children("Contents")) {
    const char* const key = object.child_value("Key");
    listing.keys.push_back(is_encoded ? text::PercentDecoded(key) : key);
  }
  listing.next = NextPage(root, "NextContinuationToken");
  return listing;
}

std::optional<S3PartListing> ReadParts(const std::string& xml) {
  const Answer answer(xml, "ListPartsResult");
  if (!answer.IsThere()) return std::nullopt;
  S3PartListing listing;
  for (const pugi::xml_node& node : answer.Root().children("Part")) {
    const std::optional<S3Part> part = PartIn(node);
    if (!part) return std::nullopt;
    listing.parts.push_back(*part);
  }
  listing.next = NextPage(answer.Root(), "NextPartNumberMarker");
  return listing;
}

std::optional<std::vector<std::string>> ReadDeleteErrors(const std::string& xml) {
  const Answer answer(xml, "DeleteResult");
  if (!answer.IsThere()) return std::nullopt;
  std::vector<std::string> codes;
  for (const pugi::xml_node& error : answer.Root().children("Error")) {
    codes.emplace_back(error.child_value("Code"));
  }
  return codes;
}

bool CanStandInXml(const std::string& key) {
  return std::none_of(key.begin(), key.end(), [](char c) { return c >= '\0' && c < ' '; });
}

std::string DeletionXml(const std::vector<std::string>& keys) {
  std::string xml = "<Delete><Quiet>true</Quiet>";
  for (const std::string& key : keys) xml += "<Object><Key>" + Escaped(key) + "</Key></Object>";
  return xml + "</Delete>";
}

std::string CompletionXml(const std::vector<S3Part>& parts) {
  std::string xml = "<CompleteMultipartUpload>";
  for (const S3Part& part : parts) {
    xml += "<Part><PartNumber>" + std::to_string(part.number) + "</PartNumber><ETag>" +
           Escaped(part.etag) + "</ETag></Part>";
  }
  return xml + "</CompleteMultipartUpload>";
}

}  // namespace qv::components
