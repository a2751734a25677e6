#include "S3Store.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "Digest.h"
#include "S3Download.h"
#include "S3Errors.h"
#include "S3Parts.h"
#include "S3Xml.h"
#include "base/text/Letters.h"
#include "base/text/Percent.h"

namespace qv::components {

namespace {

// The number of keys in one listing and in one deletion.
constexpr std::size_t kPage = 1000;
// Enough for a hundred million objects. A server that sends more is malfunctioning.
constexpr int kMaxPages = 100000;

// Never deletes anything outside the folder, whatever a listing contains.
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
  // Servers require this header in addition to the hash that is signed.
  const std::string digest = Md5(body);
  if (!digest.empty()) request.headers.emplace_back("content-md5", Base64Of(digest));
  request.headers.emplace_back("content-type", "application/xml");
  const S3Answer answer = session.Ask(request, body);
  if (!answer.IsFine()) return answer.result;
  const auto errors = ReadDeleteErrors(answer.body);
  if (!errors) return QvTransfer_BadAnswer;
  for (const std::string& code : *errors) {
    // A code without a better result counts as refused.
    const QvTransferResult result = ResultOfError(403, code);
    // An object that was deleted by somebody else in the meantime is no failure.
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
                    // Keys may contain characters that XML does not allow.
                    {"encoding-type", "url"}}};
}

// Deletes all objects below a folder, which the server does not know as such. Continues after a
// failure and returns the first one. Returns NotFound if there were no objects.
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
    // The listing would never end.
    if (*listing->next == token) return QvTransfer_BadAnswer;
    token = *listing->next;
    request = ListingRequest(folder);
    request.query.emplace_back("continuation-token", token);
  }
  return QvTransfer_BadAnswer;
}

// Ignores progress.
class NoMeter final : public TransferMeter {
 public:
  bool Moved(std::uint64_t, std::uint64_t) override { return true; }
};

// Returns whether `text` can be a part of the credential that a request is signed with.
bool IsCredentialPart(std::string_view text) {
  return !text.empty() && text::IsVisible(text) &&
         text.find_first_of("/,") == std::string_view::npos;
}

// Returns true for an answer that valid keys get if they may not list buckets.
bool IsOnlyTheList(const S3Answer& answer) {
  return answer.code == "AccessDenied" || answer.code == "MethodNotAllowed" ||
         answer.code == "NotImplemented";
}

QvTransferResult TryKeys(S3Session& session) {
  const S3Answer answer = session.Ask({});
  if (IsOnlyTheList(answer)) return QvTransfer_Success;
  if (!answer.IsFine()) return answer.result;
  const bool is_list = ReadText(answer.body, "ListAllMyBucketsResult", "Buckets").has_value();
  return is_list ? QvTransfer_Success : QvTransfer_BadAnswer;
}

// Returns the headers that name the source of a copy, and the state of it that was looked at.
TextPairs CopySource(const S3Path& from, const std::string& etag) {
  TextPairs headers = {
      {"x-amz-copy-source", text::PercentEncoded(from.bucket + "/" + from.key, "/")}};
  if (!etag.empty()) headers.emplace_back("x-amz-copy-source-if-match", etag);
  return headers;
}

}  // namespace

std::unique_ptr<S3Store> S3Store::LogIn(const S3Endpoint& endpoint, const S3Keys& keys,
                                        const TransferSettings& settings,
                                        QvTransferResult& result) {
  result = QvTransfer_BadArgument;
  if (!IsCredentialPart(keys.access) || keys.secret.empty() || !IsCredentialPart(keys.region)) {
    return nullptr;
  }
  S3Session session(endpoint, keys, settings);
  result = TryKeys(session);
  if (result != QvTransfer_Success) return nullptr;
  return std::make_unique<S3Store>(std::move(session));
}

QvTransferResult S3Store::Upload(const std::string& local, const std::string& remote,
                                 Resume& resume, TransferMeter& meter) {
  const std::optional<S3Path> target = S3Path::OfObject(remote);
  if (!target) return QvTransfer_BadArgument;
  std::optional<LocalSource> source = LocalSource::Open(local);
  if (!source) return QvTransfer_LocalFile;
  if (source->Size() <= limits_.single_upload) {
    // Parts of an earlier, longer file of that name are useless now.
    Forget(*target, resume);
    const S3Request request{.method = "PUT", .bucket = target->bucket, .key = target->key};
    return session_.Send(request, *source, 0, source->Size(), meter).result;
  }
  const PartPlan plan = PartPlan::For(source->Size(), session_.Settings().part_bytes);
  S3Parts parts(session_, *target, plan, source->State(), resume);
  const auto move = [&](const S3Request& request, std::uint64_t start, std::uint64_t length,
                        TransferMeter& part_meter) {
    return session_.Send(request, *source, start, length, part_meter);
  };
  return parts.Run(move, meter);
}

QvTransferResult S3Store::Download(const std::string& remote, const std::string& local,
                                   Resume& resume, TransferMeter& meter) {
  const std::optional<S3Path> object = S3Path::OfObject(remote);
  if (!object) return QvTransfer_BadArgument;
  return S3Download(session_, *object, local, resume, meter).Run();
}

QvTransferResult S3Store::Copy(const std::string& from, const std::string& to, Resume& resume,
                               TransferMeter& meter) {
  const std::optional<S3Path> source = S3Path::OfObject(from);
  const std::optional<S3Path> target = S3Path::OfObject(to);
  if (!source || !target) return QvTransfer_BadArgument;
  const S3Answer answer = AskFor(*source, "HEAD");
  if (!answer.IsFine()) return answer.result;
  if (*source == *target) return QvTransfer_Success;
  if (!answer.head.length) return QvTransfer_BadAnswer;
  const std::uint64_t bytes = *answer.head.length;
  const TextPairs headers = CopySource(*source, answer.head.etag);
  if (bytes > limits_.single_copy) return CopyInParts(*target, headers, bytes, resume, meter);
  Forget(*target, resume);
  return CopyAtOnce(*target, headers, bytes, meter);
}

QvTransferResult S3Store::CopyAtOnce(const S3Path& to, const TextPairs& source, std::uint64_t bytes,
                                     TransferMeter& meter) {
  const S3Request request{
      .method = "PUT", .bucket = to.bucket, .key = to.key, .query = {}, .headers = source};
  const S3Answer answer = session_.AskAndWait(request, {}, bytes, meter);
  if (!answer.IsFine()) return answer.result;
  const bool is_copied = ReadText(answer.body, "CopyObjectResult", "ETag").has_value();
  return is_copied ? QvTransfer_Success : QvTransfer_BadAnswer;
}

QvTransferResult S3Store::CopyInParts(const S3Path& to, const TextPairs& source,
                                      std::uint64_t bytes, Resume& resume, TransferMeter& meter) {
  std::string state = std::to_string(bytes);
  for (const auto& [name, value] : source) state += " " + value;
  S3Parts parts(session_, to, PartPlan::For(bytes, limits_.part_of_copy), state, resume);
  const auto move = [&](S3Request request, std::uint64_t start, std::uint64_t length,
                        TransferMeter& part_meter) {
    request.headers = source;
    request.headers.emplace_back("x-amz-copy-source-range", "bytes=" + std::to_string(start) + "-" +
                                                                std::to_string(start + length - 1));
    S3Answer answer = session_.AskAndWait(request, {}, length, part_meter);
    answer.head.etag = ReadText(answer.body, "CopyPartResult", "ETag").value_or("");
    return answer;
  };
  return parts.Run(move, meter);
}

bool S3Store::Abandon(const std::string& remote, const Resume& resume) {
  const std::optional<S3Path> target = S3Path::OfObject(remote);
  return !target || S3Parts::Abandon(session_, *target, resume) != QvTransfer_CannotConnect;
}

QvTransferResult S3Store::Rename(const std::string& from, const std::string& to) {
  Resume resume;
  NoMeter meter;
  const QvTransferResult result = Copy(from, to, resume, meter);
  if (const auto target = S3Path::OfObject(to)) Forget(*target, resume);
  if (result != QvTransfer_Success || S3Path::OfObject(from) == S3Path::OfObject(to)) return result;
  return AskFor(*S3Path::OfObject(from), "DELETE").result;
}

QvTransferResult S3Store::DeleteFile(const std::string& path) {
  const std::optional<S3Path> object = S3Path::OfObject(path);
  if (!object) return QvTransfer_BadArgument;
  // Deleting a missing object succeeds too, hence the look-up. Keys without permission to look may
  // still delete.
  const QvTransferResult result = AskFor(*object, "HEAD").result;
  if (result != QvTransfer_Success && result != QvTransfer_Refused) return result;
  return AskFor(*object, "DELETE").result;
}

QvTransferResult S3Store::DeleteFolder(const std::string& path) {
  const std::optional<S3Path> folder = S3Path::OfFolder(path);
  return folder ? DeleteBelow(session_, *folder) : QvTransfer_BadArgument;
}

S3Answer S3Store::AskFor(const S3Path& object, const char* method) {
  return session_.Ask({.method = method, .bucket = object.bucket, .key = object.key});
}

void S3Store::Forget(const S3Path& target, Resume& resume) {
  if (resume.IsEmpty()) return;
  static_cast<void>(S3Parts::Abandon(session_, target, resume));
  resume = {};
}

}  // namespace qv::components
