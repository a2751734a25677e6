#include "CurlRequest.h"

#include <algorithm>
#include <new>

namespace qv::components {

namespace {

// libcurl delivers a server's few words about a file as a body, even if no body was requested.
constexpr std::size_t kMostDropped = 64U << 10;

bool IsMistrust(CURLcode code) {
  switch (code) {
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_INVALIDCERTSTATUS:
    case CURLE_SSL_CERTPROBLEM:
      return true;
    default:
      return false;
  }
}

bool IsLoss(CURLcode code) {
  switch (code) {
    case CURLE_COULDNT_CONNECT:
    case CURLE_OPERATION_TIMEDOUT:
    case CURLE_ABORTED_BY_CALLBACK:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SEND_FAIL_REWIND:
    case CURLE_FTP_ACCEPT_FAILED:
    case CURLE_FTP_ACCEPT_TIMEOUT:
    case CURLE_HTTP2_STREAM:
      return true;
    default:
      return false;
  }
}

}  // namespace

CurlRequest::CurlRequest(curl::CurlHandle& handle, const TransferSettings& settings)
    : transfer_(handle, *this, {settings.connect_timeout, settings.io_timeout}, settings.ca_file,
                curl::Transfer::Sending::kAgain) {
  Set(CURLOPT_BUFFERSIZE, 128L << 10);
  Set(CURLOPT_UPLOAD_BUFFERSIZE, 128L << 10);
}

void CurlRequest::ReportTo(TransferMeter& meter, std::uint64_t base, std::uint64_t total) {
  meter_ = &meter;
  base_ = base;
  total_ = total;
}

QvTransferResult CurlRequest::Perform() {
  static_cast<void>(transfer_.RunUntil([] { return false; }));
  // An option was refused because its text exceeds a limit of libcurl. The text may have come from
  // a server.
  if (!transfer_.IsSetUp()) return QvTransfer_BadArgument;
  // Once a server was reached, this may also be a line that exceeds a limit of libcurl.
  if (Code() == CURLE_OUT_OF_MEMORY && !transfer_.HasBegun()) throw std::bad_alloc();
  return Result();
}

QvTransferResult CurlRequest::Result() const {
  if (Code() == CURLE_OK) return QvTransfer_Success;
  if (is_stopped_) return QvTransfer_Stopped;
  if (has_file_failed_ || Code() == CURLE_READ_ERROR) return QvTransfer_LocalFile;
  if (Code() == CURLE_LOGIN_DENIED) return QvTransfer_LoginRefused;
  if (Code() == CURLE_URL_MALFORMAT) return QvTransfer_BadArgument;
  if (IsMistrust(Code())) return QvTransfer_NotTrusted;
  if (!transfer_.HasBegun()) return QvTransfer_CannotConnect;
  return IsLoss(Code()) ? QvTransfer_Broken : QvTransfer_BadAnswer;
}

curl::Next CurlRequest::Send(std::span<char> room, std::size_t& count) {
  if (source_ == nullptr) return curl::Next::kGoOn;
  const auto read = source_->Read(room);
  has_file_failed_ |= !read;
  count = read.value_or(0);
  return read ? curl::Next::kGoOn : curl::Next::kFail;
}

bool CurlRequest::Rewind(std::uint64_t offset) {
  return source_ != nullptr && source_->Seek(offset);
}

curl::Next CurlRequest::TakeBody(std::span<const char> bytes) {
  bool is_taken = false;
  if (sink_ != nullptr) {
    is_taken = sink_->Write(bytes);
    has_file_failed_ |= !is_taken;
  } else {
    dropped_ += bytes.size();
    is_taken = dropped_ <= kMostDropped;
  }
  return is_taken ? curl::Next::kGoOn : curl::Next::kFail;
}

bool CurlRequest::GoesOn(const curl::Progress& progress) {
  if (meter_ == nullptr) return true;
  const std::uint64_t moved = std::max(progress.received, progress.sent);
  const std::uint64_t found = progress.to_receive != 0 ? base_ + progress.to_receive : 0;
  is_stopped_ = !meter_->Moved(base_ + moved, total_ != 0 ? total_ : found);
  return !is_stopped_;
}

}  // namespace qv::components
