#include "HttpStream.h"

#include <algorithm>

#include "base/curl/CurlTrust.h"

namespace qv::wire {

namespace {

constexpr const char* kTokenHeader = "Qv-Login-Token";
constexpr const char* kCodingHeader = "Transfer-Encoding";
// All header lines of an answer together, those before the final status among them.
constexpr std::size_t kMaxHeaderBytes = 64U << 10;

// A header of the final answer; null when it has fewer than `index` + 1 of that name.
const curl_header* Header(CURL* easy, const char* name, std::size_t index = 0) {
  curl_header* found = nullptr;
  const CURLHcode code = curl_easy_header(easy, name, index, CURLH_HEADER, -1, &found);
  return code == CURLHE_OK ? found : nullptr;
}

}  // namespace

HttpStream::HttpStream(KeptConnection& connection, const HttpSettings& settings,
                       const HttpRequest& request)
    : connection_(connection), settings_(settings), last_progress_(Clock::now()) {
  // The connection stays, which is what the handle is kept for.
  curl_easy_reset(connection_.Easy());
  SetUpTransfer(request);
  SetUpSecurity();
  SetUpCallbacks();
}

HttpStream::~HttpStream() {
  if (is_added_) curl_multi_remove_handle(connection_.Multi(), connection_.Easy());
  // The options still point to members.
  curl_easy_reset(connection_.Easy());
}

template <class Value>
void HttpStream::Set(CURLoption option, Value value) {
  is_set_up_ = is_set_up_ && curl_easy_setopt(connection_.Easy(), option, value) == CURLE_OK;
}

void HttpStream::SetUpTransfer(const HttpRequest& request) {
  Set(CURLOPT_URL, connection_.Server().c_str());
  Set(CURLOPT_POST, 1L);
  Set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.length));
  Set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  AddHeader("Content-Type: application/octet-stream");
  // No round trip for the permission to send.
  AddHeader("Expect:");
  if (request.compress) AddHeader("Qv-Compress: 1");
  if (!request.login_token.empty()) {
    AddHeader(kTokenHeader + std::string(": ") + request.login_token);
  }
  Set(CURLOPT_HTTPHEADER, headers_.get());
  Set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(settings_.connect_timeout.count()));
  // A host may have handlers of its own for signals, and a slow name lookup is left behind.
  Set(CURLOPT_NOSIGNAL, 1L);
  Set(CURLOPT_QUICK_EXIT, 1L);
}

void HttpStream::SetUpSecurity() {
  Set(CURLOPT_PROTOCOLS_STR, "http,https");
  is_set_up_ = is_set_up_ && curl::SetUpTrust(connection_.Easy(), settings_.ca_file);
}

void HttpStream::SetUpCallbacks() {
  Set(CURLOPT_SOCKOPTFUNCTION, &OnSocket);
  Set(CURLOPT_SOCKOPTDATA, this);
  Set(CURLOPT_PREREQFUNCTION, &OnRequest);
  Set(CURLOPT_PREREQDATA, this);
  Set(CURLOPT_READFUNCTION, &OnSend);
  Set(CURLOPT_READDATA, this);
  Set(CURLOPT_HEADERFUNCTION, &OnHeader);
  Set(CURLOPT_HEADERDATA, this);
  Set(CURLOPT_WRITEFUNCTION, &OnBody);
  Set(CURLOPT_WRITEDATA, this);
}

void HttpStream::AddHeader(const std::string& line) {
  curl_slist* const longer = curl_slist_append(headers_.get(), line.c_str());
  is_set_up_ = is_set_up_ && longer != nullptr;
  if (longer == nullptr) return;
  static_cast<void>(headers_.release());
  headers_.reset(longer);
}

bool HttpStream::Write(std::initializer_list<Bytes> pieces) {
  pieces_ = pieces;
  next_piece_ = 0;
  const bool is_written = RunUntil([this] { return next_piece_ == pieces_.size(); });
  pieces_.clear();
  next_piece_ = 0;
  return is_written;
}

bool HttpStream::Read(WritableBytes bytes) {
  const std::size_t at_hand = std::min(unread_.size(), bytes.size());
  std::copy_n(unread_.begin(), at_hand, bytes.begin());
  unread_ = unread_.subspan(at_hand);
  target_ = bytes.subspan(at_hand);
  const bool is_read = RunUntil([this] { return target_.empty(); });
  target_ = {};
  return is_read;
}

FrameStatus HttpStream::End() {
  const bool goes_on = RunUntil([this] { return !unread_.empty(); });
  if (goes_on) return FrameStatus::kMalformed;
  if (outcome_ != CURLE_OK) return Failure();
  connection_.NoteConnection();
  return FrameStatus::kDone;
}

FrameStatus HttpStream::Failure() const {
  if (is_malformed_) return FrameStatus::kMalformed;
  switch (outcome_.value_or(CURLE_OPERATION_TIMEDOUT)) {
    case CURLE_OK:
      // Without a length of its own a body is over when the connection is, for whatever reason.
      return Header(connection_.Easy(), "Content-Length") ||
                     Header(connection_.Easy(), kCodingHeader)
                 ? FrameStatus::kMalformed
                 : FrameStatus::kConnectionLost;
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_WEIRD_SERVER_REPLY:
      return FrameStatus::kMalformed;
    case CURLE_OUT_OF_MEMORY:
      // Also what libcurl says of a header line that is longer than it takes.
      return has_all_headers_ ? FrameStatus::kConnectionLost : FrameStatus::kMalformed;
    default:
      return FrameStatus::kConnectionLost;
  }
}

std::string_view HttpStream::LoginToken() const {
  const curl_header* header = has_status_200_ ? Header(connection_.Easy(), kTokenHeader) : nullptr;
  if (header != nullptr) header = Header(connection_.Easy(), kTokenHeader, header->amount - 1);
  return header != nullptr ? header->value : std::string_view();
}

// When a kept connection fails under a request, libcurl would connect and send it again, though the
// server may have acted on it by then.
int HttpStream::OnSocket(void* self, curl_socket_t, curlsocktype) noexcept {
  return static_cast<HttpStream*>(self)->HasBegun() ? CURL_SOCKOPT_ERROR : CURL_SOCKOPT_OK;
}

int HttpStream::OnRequest(void* self, char*, char*, int, int) noexcept {
  auto& stream = *static_cast<HttpStream*>(self);
  stream.last_progress_ = Clock::now();
  return ++stream.attempts_ == 1 ? CURL_PREREQFUNC_OK : CURL_PREREQFUNC_ABORT;
}

std::size_t HttpStream::OnSend(char* buffer, std::size_t size, std::size_t count,
                               void* self) noexcept {
  const WritableBytes room(reinterpret_cast<unsigned char*>(buffer), size * count);
  const std::size_t sent = static_cast<HttpStream*>(self)->Send(room);
  return sent != 0 ? sent : CURL_READFUNC_PAUSE;
}

std::size_t HttpStream::Send(WritableBytes room) {
  std::size_t sent = 0;
  for (; next_piece_ != pieces_.size(); ++next_piece_) {
    Bytes& piece = pieces_[next_piece_];
    const std::size_t length = std::min(piece.size(), room.size() - sent);
    std::copy_n(piece.begin(), length, room.begin() + static_cast<std::ptrdiff_t>(sent));
    piece = piece.subspan(length);
    sent += length;
    if (!piece.empty()) break;
  }
  return sent;
}

std::size_t HttpStream::OnHeader(char* line, std::size_t size, std::size_t count,
                                 void* self) noexcept {
  const Bytes bytes(reinterpret_cast<unsigned char*>(line), size * count);
  auto& stream = *static_cast<HttpStream*>(self);
  if (stream.TakeHeader(bytes)) return bytes.size();
  stream.is_malformed_ = true;
  return 0;
}

bool HttpStream::TakeHeader(Bytes line) {
  header_bytes_ += line.size();
  if (header_bytes_ > kMaxHeaderBytes) return false;
  const bool is_last = !line.empty() && (line[0] == '\r' || line[0] == '\n');
  if (!is_last || has_all_headers_) return true;
  long status = 0;
  curl_easy_getinfo(connection_.Easy(), CURLINFO_RESPONSE_CODE, &status);
  // What is only on the way to an answer; but after 101 another protocol would follow.
  if (status >= 100 && status < 200 && status != 101) return true;
  has_all_headers_ = true;
  has_status_200_ = status == 200;
  return has_status_200_ && IsFrameAhead();
}

bool HttpStream::IsFrameAhead() {
  // Packed for the transfer, which nobody asked for, a little could become very much.
  const curl_header* const coding = Header(connection_.Easy(), kCodingHeader);
  return coding == nullptr || (coding->amount == 1 && curl_strequal(coding->value, "chunked"));
}

std::size_t HttpStream::OnBody(char* bytes, std::size_t size, std::size_t count,
                               void* self) noexcept {
  return static_cast<HttpStream*>(self)->TakeBody(
      {reinterpret_cast<unsigned char*>(bytes), size * count});
}

std::size_t HttpStream::TakeBody(Bytes bytes) {
  if (!unread_.empty()) return CURL_WRITEFUNC_PAUSE;
  const Bytes wanted = bytes.first(std::min(bytes.size(), target_.size()));
  const Bytes surplus = bytes.subspan(wanted.size());
  if (surplus.size() > surplus_.size()) return 0;
  std::copy(wanted.begin(), wanted.end(), target_.begin());
  std::copy(surplus.begin(), surplus.end(), surplus_.begin());
  target_ = target_.subspan(wanted.size());
  unread_ = WritableBytes(surplus_).first(surplus.size());
  return bytes.size();
}

template <class Condition>
bool HttpStream::RunUntil(const Condition& is_done) {
  if (is_done()) return true;
  if (is_added_) last_progress_ = Clock::now();
  if (!Resume()) return false;
  for (;;) {
    if (!Perform()) return false;
    if (is_done()) return true;
    if (outcome_ || !Wait()) return false;
  }
}

bool HttpStream::Resume() {
  if (outcome_ || !is_set_up_) return false;
  if (is_added_) return curl_easy_pause(connection_.Easy(), CURLPAUSE_CONT) == CURLE_OK;
  is_added_ = curl_multi_add_handle(connection_.Multi(), connection_.Easy()) == CURLM_OK;
  return is_added_;
}

bool HttpStream::Perform() {
  int running = 0;
  if (curl_multi_perform(connection_.Multi(), &running) != CURLM_OK) return false;
  int left = 0;
  if (const CURLMsg* const message = curl_multi_info_read(connection_.Multi(), &left)) {
    outcome_ = message->data.result;
  }
  NoteProgress();
  return true;
}

void HttpStream::NoteProgress() {
  curl_off_t sent = 0;
  curl_off_t received = 0;
  curl_easy_getinfo(connection_.Easy(), CURLINFO_SIZE_UPLOAD_T, &sent);
  curl_easy_getinfo(connection_.Easy(), CURLINFO_SIZE_DOWNLOAD_T, &received);
  const std::uint64_t progress =
      static_cast<std::uint64_t>(sent) + static_cast<std::uint64_t>(received) + header_bytes_;
  if (progress == progress_) return;
  progress_ = progress;
  last_progress_ = Clock::now();
}

bool HttpStream::Wait() {
  const auto patience = HasBegun() ? settings_.io_timeout : settings_.connect_timeout;
  const auto left =
      std::chrono::ceil<std::chrono::milliseconds>(last_progress_ + patience - Clock::now());
  if (left.count() <= 0) return false;
  return curl_multi_poll(connection_.Multi(), nullptr, 0, static_cast<int>(left.count()),
                         nullptr) == CURLM_OK;
}

}  // namespace qv::wire
