#include "HttpStream.h"

#include <algorithm>
#include <string>
#include <system_error>

#include "transports/exchange/CallError.h"
#include "transports/exchange/Waiting.h"

namespace qv::wire {

namespace {

constexpr const char* kTokenHeader = "Qv-Login-Token";
constexpr const char* kCodingHeader = "Transfer-Encoding";
constexpr const char* kBusyHeader = "Qv-Busy";
constexpr const char* kReasonHeader = "Qv-Reason";
constexpr long kServiceUnavailable = 503;

// Returns a header of the final answer, or null if there are fewer than `index` + 1 of that name.
const curl_header* Header(CURL* easy, const char* name, std::size_t index = 0) {
  curl_header* found = nullptr;
  const CURLHcode code = curl_easy_header(easy, name, index, CURLH_HEADER, -1, &found);
  return code == CURLHE_OK ? found : nullptr;
}

}  // namespace

bool KeptConnection::IsQuiet() const {
  if (socket_ == CURL_SOCKET_BAD) return true;
  curl_waitfd unread{.fd = socket_, .events = CURL_WAIT_POLLIN, .revents = 0};
  int ready = 0;
  return curl_multi_poll(handle_.Multi(), &unread, 1, 0, &ready) == CURLM_OK && ready == 0;
}

void KeptConnection::NoteConnection() {
  socket_ = CURL_SOCKET_BAD;
  curl_easy_getinfo(Easy(), CURLINFO_ACTIVESOCKET, &socket_);
}

HttpStream::HttpStream(KeptConnection& connection, const HttpSettings& settings,
                       const HttpRequest& request)
    : connection_(connection),
      settings_(settings),
      cancel_(request.cancel),
      transfer_(connection.Handle(), *this, {request.connect_within, settings.io_timeout},
                settings.ca_file, curl::Transfer::Sending::kOnce) {
  SetUp(request);
}

void HttpStream::SetUp(const HttpRequest& request) {
  transfer_.Set(CURLOPT_PROTOCOLS_STR, "http,https");
  transfer_.Set(CURLOPT_URL, connection_.Server().c_str());
  transfer_.Set(CURLOPT_POST, 1L);
  transfer_.Set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.length));
  transfer_.Set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  const auto add_header = [this](const std::string& line) {
    transfer_.AddLine(CURLOPT_HTTPHEADER, line);
  };
  add_header("Content-Type: application/octet-stream");
  // Saves the round trip of asking for permission to send.
  add_header("Expect:");
  add_header("Qv-Frame: 2");
  if (request.compress) add_header("Qv-Compress: 1");
  if (!request.login_token.empty()) {
    add_header(kTokenHeader + std::string(": ") + request.login_token);
  }
}

bool HttpStream::Write(std::initializer_list<Bytes> pieces) {
  if (AskForCancel()) return false;
  pieces_ = pieces;
  next_piece_ = 0;
  const bool is_written = transfer_.RunUntil([this] { return next_piece_ == pieces_.size(); });
  pieces_.clear();
  next_piece_ = 0;
  return is_written;
}

bool HttpStream::Read(WritableBytes bytes) {
  if (AskForCancel()) return false;
  const std::size_t at_hand = std::min(unread_.size(), bytes.size());
  std::copy_n(unread_.begin(), at_hand, bytes.begin());
  unread_ = unread_.subspan(at_hand);
  target_ = bytes.subspan(at_hand);
  const bool is_read = transfer_.RunUntil([this] { return target_.empty(); });
  target_ = {};
  return is_read;
}

FrameStatus HttpStream::End() {
  const bool goes_on = transfer_.RunUntil([this] { return !unread_.empty(); });
  if (goes_on) return FrameStatus::kMalformed;
  if (transfer_.Outcome() != CURLE_OK) return Failure();
  connection_.NoteConnection();
  return FrameStatus::kDone;
}

FrameStatus HttpStream::Failure() const {
  switch (transfer_.Outcome().value_or(CURLE_OPERATION_TIMEDOUT)) {
    case CURLE_OK:
      // A body without a length ends with the connection, whatever the reason.
      return Header(connection_.Easy(), "Content-Length") ||
                     Header(connection_.Easy(), kCodingHeader)
                 ? FrameStatus::kMalformed
                 : FrameStatus::kConnectionLost;
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_WRITE_ERROR:  // TakeLine refused a header, or there were too many
      return FrameStatus::kMalformed;
    case CURLE_OUT_OF_MEMORY:
      // libcurl also reports a header line that exceeds its limit in this way.
      return has_all_headers_ ? FrameStatus::kConnectionLost : FrameStatus::kMalformed;
    default:
      return FrameStatus::kConnectionLost;
  }
}

CallError HttpStream::Error(std::string_view peer) const {
  if (is_cancelled_) return Cancelled();
  const std::string said(transfer_.ErrorText());
  if (!HasBegun()) return CannotConnect(peer, settings_.connect_timeout, WhyNotConnected());
  if (transfer_.IsTooLate()) return NoProgress(settings_.io_timeout);
  if (has_all_headers_ && !has_status_200_) {
    return {error::kBadReply,
            "the server answered with HTTP status " + std::to_string(transfer_.AnswerCode())};
  }
  if (Failure() == FrameStatus::kConnectionLost) return ConnectionLost(peer, said);
  if (transfer_.Outcome() == CURLE_OK) {
    return {error::kBadReply, "the reply ends before its frame does"};
  }
  return {error::kBadReply, "the reply is malformed: " + said};
}

std::string_view HttpStream::WhyNotConnected() const {
  if (transfer_.IsTooLate()) return "no answer";
  long number = 0;
  curl_easy_getinfo(connection_.Easy(), CURLINFO_OS_ERRNO, &number);
  const std::error_code error(static_cast<int>(number), std::system_category());
  return error == std::errc::connection_refused ? "connection refused" : transfer_.ErrorText();
}

std::chrono::milliseconds HttpStream::LongestWait() const {
  return cancel_.IsSet() ? kCancelSlice : curl::Handler::LongestWait();
}

bool HttpStream::AskForCancel() {
  if (!is_cancelled_) is_cancelled_ = cancel_.Ask();
  return is_cancelled_;
}

std::string_view HttpStream::LoginToken() const {
  const curl_header* header = has_status_200_ ? Header(connection_.Easy(), kTokenHeader) : nullptr;
  if (header != nullptr) header = Header(connection_.Easy(), kTokenHeader, header->amount - 1);
  return header != nullptr ? header->value : std::string_view();
}

std::string_view HttpStream::BusyReason() const {
  const curl_header* const header = Header(connection_.Easy(), kReasonHeader);
  return header != nullptr ? header->value : std::string_view();
}

curl::Next HttpStream::Send(std::span<char> room, std::size_t& count) {
  for (; next_piece_ != pieces_.size(); ++next_piece_) {
    Bytes& piece = pieces_[next_piece_];
    const std::size_t length = std::min(piece.size(), room.size() - count);
    std::copy_n(piece.begin(), length, room.begin() + static_cast<std::ptrdiff_t>(count));
    piece = piece.subspan(length);
    count += length;
    if (!piece.empty()) break;
  }
  return count != 0 ? curl::Next::kGoOn : curl::Next::kPause;
}

bool HttpStream::TakeLine(std::span<const char> line) {
  const bool is_last = !line.empty() && (line[0] == '\r' || line[0] == '\n');
  if (!is_last || has_all_headers_) return true;
  const long status = transfer_.AnswerCode();
  // Interim answers are skipped, except 101, which switches to another protocol.
  if (status >= 100 && status < 200 && status != 101) return true;
  has_all_headers_ = true;
  has_status_200_ = status == 200;
  const curl_header* const busy =
      status == kServiceUnavailable ? Header(connection_.Easy(), kBusyHeader) : nullptr;
  is_busy_ = busy != nullptr && std::string_view(busy->value) == "1";
  return has_status_200_ && IsFrameAhead();
}

bool HttpStream::IsFrameAhead() {
  // Transfer compression was not requested, and could expand a small answer enormously.
  const curl_header* const coding = Header(connection_.Easy(), kCodingHeader);
  return coding == nullptr || (coding->amount == 1 && curl_strequal(coding->value, "chunked"));
}

curl::Next HttpStream::TakeBody(std::span<const char> bytes) {
  if (!unread_.empty()) return curl::Next::kPause;
  const auto wanted = bytes.first(std::min(bytes.size(), target_.size()));
  const auto surplus = bytes.subspan(wanted.size());
  if (surplus.size() > surplus_.size()) return curl::Next::kFail;
  std::copy(wanted.begin(), wanted.end(), target_.begin());
  std::copy(surplus.begin(), surplus.end(), surplus_.begin());
  target_ = target_.subspan(wanted.size());
  unread_ = WritableBytes(surplus_).first(surplus.size());
  return curl::Next::kGoOn;
}

}  // namespace qv::wire
