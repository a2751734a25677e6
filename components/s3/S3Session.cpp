#include "S3Session.h"

#include <algorithm>
#include <vector>

#include "Digest.h"
#include "S3Errors.h"
#include "S3Xml.h"
#include "base/platform/Platform.h"
#include "base/text/Letters.h"
#include "base/text/Numbers.h"

namespace qv::components {

namespace {

// Large enough for a page of a listing with a thousand keys of maximum length, encoded.
constexpr std::size_t kMaxBody = 4U << 20;
constexpr std::size_t kHashBlock = 256U << 10;
// The number of bytes per second that a server is expected to copy or to assemble.
constexpr std::uint64_t kServerSpeed = 8U << 20;
constexpr std::uint64_t kLongestWait = 86'400;  // one day
// The time limit of an answer, in multiples of the time limit without progress.
constexpr int kAnswerPatience = 20;

std::string_view Header(CURL* easy, const char* name) {
  curl_header* found = nullptr;
  const CURLHcode code = curl_easy_header(easy, name, 0, CURLH_HEADER, -1, &found);
  return code == CURLHE_OK ? std::string_view(found->value) : std::string_view();
}

// Returns true for a strong ETag that can be sent back and signed unchanged. A weak one does not
// guarantee the same bytes.
bool IsEtag(std::string_view text) {
  return text.size() >= 2 && text.size() <= 256 && text.front() == '"' && text.back() == '"' &&
         text::IsVisible(text);
}

S3Head HeadOf(CURL* easy, long status) {
  S3Head head{.status = status,
              .range = std::string(Header(easy, "Content-Range")),
              .length = text::ParseNumber<std::uint64_t>(Header(easy, "Content-Length"))};
  if (const std::string_view etag = Header(easy, "ETag"); IsEtag(etag)) head.etag = etag;
  return head;
}

// Passes an object to its receiver, and keeps any other body.
class AnswerSink final : public BodySink {
 public:
  AnswerSink(CURL* easy, const CurlRequest& request, S3Receiver* receiver)
      : easy_(easy), request_(request), receiver_(receiver) {}

  bool Write(std::span<const char> bytes) override {
    Begin();
    if (answer_.result != QvTransfer_Success) return false;
    if (has_object_) {
      answer_.result = receiver_->Write(bytes);
      return answer_.result == QvTransfer_Success;
    }
    if (bytes.size() > kMaxBody - answer_.body.size()) {
      answer_.result = QvTransfer_BadAnswer;
      return false;
    }
    answer_.body.append(bytes.begin(), bytes.end());
    return true;
  }

  // Returns the answer after the request ended with `outcome`.
  S3Answer Finish(QvTransferResult outcome) {
    if (outcome == QvTransfer_Success) Begin();
    if (answer_.result != QvTransfer_Success) return std::move(answer_);
    answer_.result = outcome;
    if (outcome != QvTransfer_Success || has_object_) return std::move(answer_);
    answer_.code = ReadErrorCode(answer_.body).value_or("");
    answer_.result = ResultOfError(answer_.head.status, answer_.code);
    return std::move(answer_);
  }

 private:
  void Begin() {
    if (has_begun_) return;
    has_begun_ = true;
    answer_.head = HeadOf(easy_, request_.AnswerCode());
    has_object_ =
        receiver_ != nullptr && (answer_.head.status == 200 || answer_.head.status == 206);
    if (has_object_) answer_.result = receiver_->Begin(answer_.head);
  }

  CURL* easy_;
  const CurlRequest& request_;
  S3Receiver* receiver_;
  bool has_begun_ = false;
  bool has_object_ = false;
  S3Answer answer_{.result = QvTransfer_Success};
};

class TextSource final : public BodySource {
 public:
  explicit TextSource(std::string_view text) : text_(text) {}

  std::optional<std::size_t> Read(std::span<char> room) override {
    const std::size_t count = text_.copy(room.data(), room.size(), position_);
    position_ += count;
    return count;
  }
  bool Seek(std::uint64_t offset) override {
    position_ = static_cast<std::size_t>(std::min<std::uint64_t>(offset, text_.size()));
    return position_ == offset;
  }

 private:
  std::string_view text_;
  std::size_t position_ = 0;
};

// A part of a file.
class PartSource final : public BodySource {
 public:
  PartSource(LocalSource& file, std::uint64_t start, std::uint64_t length)
      : file_(file), start_(start), length_(length) {}

  [[nodiscard]] std::uint64_t Length() const { return length_; }
  std::optional<std::size_t> Read(std::span<char> room) override {
    const std::uint64_t wanted = std::min<std::uint64_t>(room.size(), length_ - position_);
    const auto read = file_.Read(room.first(static_cast<std::size_t>(wanted)));
    // The file became shorter than announced.
    if (!read || (*read == 0 && wanted != 0)) return std::nullopt;
    position_ += *read;
    return read;
  }
  bool Seek(std::uint64_t offset) override {
    if (offset > length_ || !file_.Seek(start_ + offset)) return false;
    position_ = offset;
    return true;
  }

 private:
  LocalSource& file_;
  std::uint64_t start_;
  std::uint64_t length_;
  std::uint64_t position_ = 0;
};

// The bytes on the wire are not those of the object, so they are not reported.
class WaitMeter final : public TransferMeter {
 public:
  WaitMeter(TransferMeter& meter, std::uint64_t total) : meter_(meter), total_(total) {}
  bool Moved(std::uint64_t, std::uint64_t) override { return meter_.Moved(0, total_); }

 private:
  TransferMeter& meter_;
  std::uint64_t total_;
};

// Computes the hash of all of `part` in hexadecimal.
QvTransferResult HashOf(PartSource& part, TransferMeter& meter, std::string& hash) {
  if (!part.Seek(0)) return QvTransfer_LocalFile;
  Sha256Stream stream;
  std::vector<char> block(kHashBlock);
  for (;;) {
    const auto read = part.Read(block);
    if (!read) return QvTransfer_LocalFile;
    if (*read == 0) break;
    stream.Add({block.data(), *read});
    if (!meter.Moved(0, part.Length())) return QvTransfer_Stopped;
  }
  hash = text::HexOf(stream.Finish());
  return part.Seek(0) ? QvTransfer_Success : QvTransfer_LocalFile;
}

void SetUp(CurlRequest& request, const S3Wire& wire, std::uint64_t body_bytes) {
  request.Set(CURLOPT_PROTOCOLS_STR, "http,https");
  request.Set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  request.Set(CURLOPT_URL, wire.Url().c_str());
  // Sends the path as it was signed: "." and ".." are ordinary names in a key.
  request.Set(CURLOPT_PATH_AS_IS, 1L);
  request.Set(CURLOPT_CUSTOMREQUEST, wire.method.c_str());
  if (wire.method == "HEAD") request.Set(CURLOPT_NOBODY, 1L);
  if (wire.method == "PUT" || wire.method == "POST") {
    request.Set(CURLOPT_UPLOAD, 1L);
    request.Set(CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(body_bytes));
    // Saves the round trip of asking for permission to send.
    request.AddLine(CURLOPT_HTTPHEADER, "Expect:");
  }
  for (const auto& [name, value] : wire.headers) {
    request.AddLine(CURLOPT_HTTPHEADER, name + ": " + value);
  }
}

}  // namespace

S3Answer S3Session::Ask(const S3Request& request, std::string_view body) {
  const std::optional<S3Wire> wire = Prepare(request, text::HexOf(Sha256(body)));
  if (!wire) return {.result = QvTransfer_BadArgument};
  return Exchange(*wire, body, settings_, nullptr);
}

S3Answer S3Session::AskAndWait(const S3Request& request, std::string_view body, std::uint64_t bytes,
                               TransferMeter& meter) {
  const std::optional<S3Wire> wire = Prepare(request, text::HexOf(Sha256(body)));
  if (!wire) return {.result = QvTransfer_BadArgument};
  TransferSettings settings = settings_;
  settings.io_timeout += std::chrono::seconds(std::min(bytes / kServerSpeed, kLongestWait));
  WaitMeter waiting(meter, bytes);
  return Exchange(*wire, body, settings, &waiting);
}

S3Answer S3Session::Exchange(const S3Wire& wire, std::string_view body,
                             const TransferSettings& settings, TransferMeter* meter) {
  CurlRequest exchange(curl_, settings);
  SetUp(exchange, wire, body.size());
  const auto deadline = kAnswerPatience * settings.io_timeout;
  exchange.Set(CURLOPT_TIMEOUT_MS, static_cast<long>(deadline.count()));
  TextSource source(body);
  exchange.Send(source);
  AnswerSink sink(curl_.Easy(), exchange, nullptr);
  exchange.Receive(sink);
  if (meter != nullptr) exchange.ReportTo(*meter, 0, 0);
  return sink.Finish(exchange.Perform());
}

S3Answer S3Session::Send(const S3Request& request, LocalSource& source, std::uint64_t start,
                         std::uint64_t length, TransferMeter& meter) {
  PartSource part(source, start, length);
  std::string hash;
  const QvTransferResult hashed = HashOf(part, meter, hash);
  if (hashed != QvTransfer_Success) return {.result = hashed};
  const std::optional<S3Wire> wire = Prepare(request, hash);
  if (!wire) return {.result = QvTransfer_BadArgument};
  CurlRequest exchange(curl_, settings_);
  SetUp(exchange, *wire, length);
  exchange.Send(part);
  AnswerSink sink(curl_.Easy(), exchange, nullptr);
  exchange.Receive(sink);
  exchange.ReportTo(meter, 0, length);
  return sink.Finish(exchange.Perform());
}

S3Answer S3Session::Receive(const S3Request& request, S3Receiver& receiver, TransferMeter& meter) {
  const std::optional<S3Wire> wire = Prepare(request, text::HexOf(Sha256({})));
  if (!wire) return {.result = QvTransfer_BadArgument};
  CurlRequest exchange(curl_, settings_);
  SetUp(exchange, *wire, 0);
  AnswerSink sink(curl_.Easy(), exchange, &receiver);
  exchange.Receive(sink);
  exchange.ReportTo(meter, 0, 0);
  return sink.Finish(exchange.Perform());
}

std::optional<S3Wire> S3Session::Prepare(const S3Request& request,
                                         const std::string& body_hash) const {
  std::optional<S3Wire> wire = endpoint_.Address(request);
  if (wire) Sign(*wire, keys_, body_hash, platform::UnixTime());
  return wire;
}

}  // namespace qv::components
