#include "CurlRequest.h"

#include <algorithm>
#include <exception>
#include <new>

#include "base/curl/CurlTrust.h"

namespace qv::components {

namespace {

// All lines together with which a server answers one request.
constexpr std::size_t kMaxLineBytes = 64U << 10;

std::uint64_t Bytes(curl_off_t count) { return count > 0 ? static_cast<std::uint64_t>(count) : 0; }

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
    : handle_(handle), easy_(handle.Easy()), settings_(settings) {
  curl_easy_reset(easy_);
  // A host may have handlers of its own for signals, and a slow name lookup is left behind.
  Set(CURLOPT_NOSIGNAL, 1L);
  Set(CURLOPT_QUICK_EXIT, 1L);
  Set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(settings_.connect_timeout.count()));
  Set(CURLOPT_BUFFERSIZE, 128L << 10);
  Set(CURLOPT_UPLOAD_BUFFERSIZE, 128L << 10);
  if (!curl::SetUpTrust(easy_, settings_.ca_file)) set_up_ = CURLE_OUT_OF_MEMORY;
  SetUpCallbacks();
}

CurlRequest::~CurlRequest() { curl_easy_reset(easy_); }

void CurlRequest::SetUpCallbacks() {
  Set(CURLOPT_RESOLVER_START_FUNCTION, &OnLookup);
  Set(CURLOPT_RESOLVER_START_DATA, this);
  Set(CURLOPT_SOCKOPTFUNCTION, &OnSocket);
  Set(CURLOPT_SOCKOPTDATA, this);
  Set(CURLOPT_PREREQFUNCTION, &OnReady);
  Set(CURLOPT_PREREQDATA, this);
  Set(CURLOPT_HEADERFUNCTION, &OnLine);
  Set(CURLOPT_HEADERDATA, this);
  Set(CURLOPT_WRITEFUNCTION, &OnBody);
  Set(CURLOPT_WRITEDATA, this);
  Set(CURLOPT_XFERINFOFUNCTION, &OnProgress);
  Set(CURLOPT_XFERINFODATA, this);
  Set(CURLOPT_NOPROGRESS, 0L);
}

void CurlRequest::AddLine(CURLoption option, const std::string& line) {
  curl_slist* const longer = curl_slist_append(lines_.get(), line.c_str());
  if (longer == nullptr) throw std::bad_alloc();
  static_cast<void>(lines_.release());
  lines_.reset(longer);
  Set(option, longer);
}

void CurlRequest::Send(BodySource& source) {
  source_ = &source;
  Set(CURLOPT_READFUNCTION, &OnSend);
  Set(CURLOPT_READDATA, this);
  Set(CURLOPT_SEEKFUNCTION, &OnSeek);
  Set(CURLOPT_SEEKDATA, this);
}

void CurlRequest::Receive(BodySink& sink) { sink_ = &sink; }

void CurlRequest::ReportTo(TransferMeter& meter, std::uint64_t base, std::uint64_t total) {
  meter_ = &meter;
  base_ = base;
  total_ = total;
}

QvTransferResult CurlRequest::Perform() {
  if (set_up_ == CURLE_OUT_OF_MEMORY) throw std::bad_alloc();
  // A text that is longer than libcurl takes, which may be one that a server made up.
  code_ = set_up_;
  if (code_ != CURLE_OK) return QvTransfer_BadArgument;
  last_progress_ = Clock::now();
  code_ = Drive();
  // It is also what libcurl says of a line that is longer than it takes.
  const bool is_short = code_ == CURLE_OUT_OF_MEMORY && !was_connected_;
  if (is_out_of_memory_ || is_short) throw std::bad_alloc();
  return Result();
}

// libcurl's own loop waits a whole second whenever an answer came before it looked for one, since
// it has nothing to wait for then: once for each file, with a server that is near.
CURLcode CurlRequest::Drive() {
  constexpr std::chrono::milliseconds kLongestWait{100};
  CURLM* const multi = handle_.Multi();
  if (curl_multi_add_handle(multi, easy_) != CURLM_OK) return CURLE_OUT_OF_MEMORY;
  CURLcode outcome = CURLE_OUT_OF_MEMORY;
  std::chrono::milliseconds wait{1};
  int running = 1;
  while (curl_multi_perform(multi, &running) == CURLM_OK && running != 0) {
    int ready = 0;
    if (curl_multi_poll(multi, nullptr, 0, static_cast<int>(wait.count()), &ready) != CURLM_OK) {
      break;
    }
    wait = ready != 0 ? std::chrono::milliseconds(1) : std::min(2 * wait, kLongestWait);
  }
  int left = 0;
  const CURLMsg* const message = curl_multi_info_read(multi, &left);
  if (message != nullptr) outcome = message->data.result;
  curl_multi_remove_handle(multi, easy_);
  return outcome;
}

long CurlRequest::AnswerCode() const {
  long code = 0;
  curl_easy_getinfo(easy_, CURLINFO_RESPONSE_CODE, &code);
  return code;
}

QvTransferResult CurlRequest::Result() const {
  if (code_ == CURLE_OK) return QvTransfer_Success;
  if (is_stopped_) return QvTransfer_Stopped;
  if (has_file_failed_ || code_ == CURLE_READ_ERROR) return QvTransfer_LocalFile;
  if (code_ == CURLE_LOGIN_DENIED) return QvTransfer_LoginRefused;
  if (code_ == CURLE_URL_MALFORMAT) return QvTransfer_BadArgument;
  if (IsMistrust(code_)) return QvTransfer_NotTrusted;
  if (!was_connected_) return QvTransfer_CannotConnect;
  return IsLoss(code_) ? QvTransfer_Broken : QvTransfer_BadAnswer;
}

int CurlRequest::OnLookup(void*, void*, void* self) noexcept {
  static_cast<CurlRequest*>(self)->BeginToConnect();
  return 0;
}

int CurlRequest::OnSocket(void* self, curl_socket_t, curlsocktype purpose) noexcept {
  if (purpose == CURLSOCKTYPE_IPCXN) static_cast<CurlRequest*>(self)->BeginToConnect();
  return CURL_SOCKOPT_OK;
}

void CurlRequest::BeginToConnect() {
  if (!is_connecting_) last_progress_ = Clock::now();
  is_connecting_ = true;
}

int CurlRequest::OnReady(void* self, char*, char*, int, int) noexcept {
  auto& request = *static_cast<CurlRequest*>(self);
  request.is_connecting_ = false;
  request.was_connected_ = true;
  request.last_progress_ = Clock::now();
  return CURL_PREREQFUNC_OK;
}

std::size_t CurlRequest::OnSend(char* room, std::size_t size, std::size_t count,
                                void* self) noexcept {
  auto& request = *static_cast<CurlRequest*>(self);
  const auto read = request.source_->Read({room, size * count});
  if (read) return *read;
  request.has_file_failed_ = true;
  return CURL_READFUNC_ABORT;
}

int CurlRequest::OnSeek(void* self, curl_off_t offset, int origin) noexcept {
  auto& request = *static_cast<CurlRequest*>(self);
  const bool is_there = origin == SEEK_SET && request.source_->Seek(Bytes(offset));
  return is_there ? CURL_SEEKFUNC_OK : CURL_SEEKFUNC_FAIL;
}

std::size_t CurlRequest::OnLine(char*, std::size_t size, std::size_t count, void* self) noexcept {
  auto& request = *static_cast<CurlRequest*>(self);
  request.is_connecting_ = false;
  request.line_bytes_ += size * count;
  return request.line_bytes_ <= kMaxLineBytes ? size * count : 0;
}

std::size_t CurlRequest::OnBody(char* bytes, std::size_t size, std::size_t count,
                                void* self) noexcept {
  auto& request = *static_cast<CurlRequest*>(self);
  if (request.sink_ == nullptr) return OnLine(bytes, size, count, self);
  try {
    if (request.sink_->Write({bytes, size * count})) return size * count;
    request.has_file_failed_ = true;
  } catch (const std::exception&) {
    request.is_out_of_memory_ = true;
  }
  return 0;
}

int CurlRequest::OnProgress(void* self, curl_off_t download_total, curl_off_t downloaded,
                            curl_off_t, curl_off_t uploaded) noexcept {
  auto& request = *static_cast<CurlRequest*>(self);
  const std::uint64_t moved = std::max(Bytes(downloaded), Bytes(uploaded));
  const bool goes_on = request.GoesOn(Bytes(downloaded) + Bytes(uploaded));
  return goes_on && request.Tell(moved, Bytes(download_total)) ? 0 : 1;
}

// libcurl asks whenever it is driven, whatever happens.
bool CurlRequest::GoesOn(std::uint64_t moved) {
  const Clock::time_point now = Clock::now();
  if (moved + line_bytes_ != progress_) {
    progress_ = moved + line_bytes_;
    last_progress_ = now;
  }
  const auto patience = is_connecting_ ? settings_.connect_timeout : settings_.io_timeout;
  return now - last_progress_ < patience;
}

bool CurlRequest::Tell(std::uint64_t moved, std::uint64_t total) {
  if (meter_ == nullptr) return true;
  const std::uint64_t found = total != 0 ? base_ + total : 0;
  is_stopped_ = !meter_->Moved(base_ + moved, total_ != 0 ? total_ : found);
  return !is_stopped_;
}

}  // namespace qv::components
