#include "S3Folder.h"

#include <algorithm>
#include <string>
#include <vector>

#include "Digest.h"
#include "S3Errors.h"
#include "S3Xml.h"

namespace qv::components {

namespace {

// As many as one deletion may name.
constexpr std::size_t kPage = 1000;
// A hundred million objects. A server that goes on for ever is not believed.
constexpr int kMaxPages = 100000;

// Nothing outside the folder is ever deleted, whatever a listing has in it.
bool IsPageOf(const std::vector<std::string>& keys, const S3Path& folder) {
  return keys.size() <= kPage && std::all_of(keys.begin(), keys.end(), [&](const auto& key) {
           return key.starts_with(folder.key);
         });
}

QvTransferResult DeleteOne(S3Session& session, const std::string& bucket, const std::string& key) {
  return session.Ask({.method = "DELETE", .bucket = bucket, .key = key}).result;
}

QvTransferResult DeleteMany(S3Session& session, const std::string& bucket,
                            const std::vector<std::string>& keys) {
  if (keys.empty()) return QvTransfer_Success;
  const std::string body = DeletionXml(keys);
  S3Request request{.method = "POST", .bucket = bucket, .query = {{"delete", ""}}};
  // Servers want it here, beside the hash that is signed.
  const std::string digest = Md5(body);
  if (!digest.empty()) request.headers.emplace_back("content-md5", Base64Of(digest));
  request.headers.emplace_back("content-type", "application/xml");
  const S3Answer answer = session.Ask(request, body);
  if (!answer.IsFine()) return answer.result;
  const auto errors = ReadDeleteErrors(answer.body);
  if (!errors) return QvTransfer_BadAnswer;
  for (const std::string& code : *errors) {
    // What has no better reason is refused.
    const QvTransferResult result = ResultOfError(403, code);
    // What somebody else deleted meanwhile is gone as well.
    if (result != QvTransfer_NotFound) return result;
  }
  return QvTransfer_Success;
}

QvTransferResult DeletePage(S3Session& session, const std::string& bucket,
                            std::vector<std::string> keys) {
  QvTransferResult first = QvTransfer_Success;
  const auto unspeakable = std::partition(keys.begin(), keys.end(), CanStandInXml);
  for (auto key = unspeakable; key != keys.end(); ++key) {
    const QvTransferResult result = DeleteOne(session, bucket, *key);
    if (first == QvTransfer_Success) first = result;
  }
  keys.erase(unspeakable, keys.end());
  const QvTransferResult result = DeleteMany(session, bucket, keys);
  return first == QvTransfer_Success ? result : first;
}

S3Request ListingRequest(const S3Path& folder) {
  return {.bucket = folder.bucket,
          .query = {{"list-type", "2"},
                    {"prefix", folder.key},
                    {"max-keys", std::to_string(kPage)},
                    // Keys may have characters that XML has not.
                    {"encoding-type", "url"}}};
}

}  // namespace

QvTransferResult DeleteBelow(S3Session& session, const S3Path& folder) {
  QvTransferResult first = QvTransfer_Success;
  S3Request request = ListingRequest(folder);
  std::string token;
  bool has_objects = false;
  for (int page = 0; page != kMaxPages; ++page) {
    const S3Answer answer = session.Ask(request);
    if (!answer.IsFine()) return answer.result;
    const std::optional<S3Listing> listing = ReadListing(answer.body);
    if (!listing || !IsPageOf(listing->keys, folder)) return QvTransfer_BadAnswer;
    has_objects = has_objects || !listing->keys.empty();
    const QvTransferResult result = DeletePage(session, folder.bucket, listing->keys);
    if (first == QvTransfer_Success) first = result;
    if (!listing->next) return has_objects ? first : QvTransfer_NotFound;
    // There would be no end to it.
    if (*listing->next == token) return QvTransfer_BadAnswer;
    token = *listing->next;
    request = ListingRequest(folder);
    request.query.emplace_back("continuation-token", token);
  }
  return QvTransfer_BadAnswer;
}

}  // namespace qv::components
