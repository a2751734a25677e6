#include "FtpSession.h"

#include <new>
#include <utility>

#include "base/text/HostName.h"
#include "base/text/Letters.h"
#include "base/text/Percent.h"
#include "components/queue/RemoteStore.h"

namespace qv::components {

namespace {

constexpr std::string_view kPlain = "ftp://";
constexpr std::string_view kSecure = "ftpes://";
constexpr std::uint16_t kUsualPort = 21;

// The time limit of a listing, in multiples of the time limit without progress.
constexpr int kListingPatience = 20;

// Returns the result for an error code of the server.
QvTransferResult Refusal(long code) {
  switch (code) {
    case 421:  // the server closes the connection
    case 425:  // no data connection
    case 426:  // the data connection broke
    case 451:  // a local error of the server
      return QvTransfer_Broken;
    default:
      return QvTransfer_Refused;
  }
}

QvTransferResult Judge(const CurlRequest& request, QvTransferResult result) {
  const long code = request.AnswerCode();
  switch (request.Code()) {
    case CURLE_REMOTE_FILE_NOT_FOUND:
      return QvTransfer_NotFound;
    case CURLE_FTP_COULDNT_RETR_FILE:
      return code == 550 ? QvTransfer_NotFound : Refusal(code);
    case CURLE_UPLOAD_FAILED:
    case CURLE_REMOTE_ACCESS_DENIED:
    case CURLE_FTP_COULDNT_SET_TYPE:
    case CURLE_FTP_PORT_FAILED:
      return Refusal(code);
    case CURLE_REMOTE_DISK_FULL:
      return QvTransfer_Refused;
    case CURLE_PARTIAL_FILE:
    // Over TLS, a transfer that the server refuses ends in this way as well.
    case CURLE_FTP_WEIRD_PASV_REPLY:
      return code >= 400 ? Refusal(code) : result;
    // The file has changed, so the next attempt starts over.
    case CURLE_BAD_DOWNLOAD_RESUME:
    case CURLE_FTP_COULDNT_USE_REST:
      return QvTransfer_Broken;
    default:
      return result;
  }
}

// Returns true if the next answer certainly belongs to the next command. After a data connection
// that failed or was aborted, it may still belong to an earlier command.
bool LeavesOrder(CURLcode code) {
  switch (code) {
    case CURLE_OK:
    case CURLE_UPLOAD_FAILED:
    case CURLE_REMOTE_FILE_NOT_FOUND:
    case CURLE_REMOTE_ACCESS_DENIED:
    case CURLE_FTP_COULDNT_RETR_FILE:
      return true;
    default:
      return false;
  }
}

curl_socket_t RefuseSocket(void*, curlsocktype, curl_sockaddr*) noexcept { return CURL_SOCKET_BAD; }

}  // namespace

std::optional<FtpServer> MakeFtpServer(std::string_view host, std::uint16_t port,
                                       std::string_view user, std::string_view password) {
  const bool has_tls = text::TakeScheme(host, kSecure);
  if (!has_tls) text::TakeScheme(host, kPlain);
  const auto name = text::HostForUrl(host);
  if (!name || text::HasControls(user) || text::HasControls(password)) return std::nullopt;
  return FtpServer{
      .url = std::string(kPlain) + *name + ':' + std::to_string(port != 0 ? port : kUsualPort),
      .has_tls = has_tls,
      .user = std::string(user),
      .password = std::string(password)};
}

std::string FtpFileState::Tag() const {
  return size && written ? std::to_string(*size) + '-' + std::to_string(*written) : std::string();
}

FtpSession::FtpSession(const TransferSettings& settings) : settings_(settings) {}

QvTransferResult FtpSession::Open(FtpServer server) {
  Quit();
  servers_.push_back(std::move(server));
  const QvTransferResult result = Reach();
  if (result != QvTransfer_Success) servers_.clear();
  return result;
}

void FtpSession::Add(FtpServer server) { servers_.push_back(std::move(server)); }

void FtpSession::Quit() noexcept {
  try {
    if (is_open_) {
      // libcurl sends QUIT when it closes the connection. If that were left to the destructor of
      // the handle, it would wait for the answer without any deadline.
      CurlRequest request(handle_, settings_);
      SetUp(request, "/");
      request.Set(CURLOPT_NOBODY, 1L);
      request.Set(CURLOPT_FORBID_REUSE, 1L);
      request.Set(CURLOPT_OPENSOCKETFUNCTION, &RefuseSocket);
      static_cast<void>(request.Perform());
    }
  } catch (const std::bad_alloc&) {
    // The server notices the end of the connection.
  }
  is_open_ = false;
  servers_.clear();
}

QvTransferResult FtpSession::Reach() {
  if (is_open_) return QvTransfer_Success;
  QvTransferResult result = QvTransfer_NotLoggedIn;
  for (std::size_t i = 0; i < servers_.size(); ++i) {
    result = LogInto(i);
    if (result != QvTransfer_CannotConnect) break;
  }
  return result;
}

QvTransferResult FtpSession::LogInto(std::size_t server) {
  current_ = server;
  CurlRequest request(handle_, settings_);
  SetUp(request, "/");
  request.Set(CURLOPT_NOBODY, 1L);
  // The state of a kept connection is uncertain. It is closed when this one replaces it.
  request.Set(CURLOPT_FRESH_CONNECT, 1L);
  const QvTransferResult result = request.Perform();
  is_open_ = result == QvTransfer_Success;
  const char* home = nullptr;
  curl_easy_getinfo(handle_.Easy(), CURLINFO_FTP_ENTRY_PATH, &home);
  home_ = home != nullptr ? home : "";
  if (!home_.starts_with('/') || text::HasControls(home_)) home_ = "/";
  if (!home_.ends_with('/')) home_ += '/';
  return result == QvTransfer_Broken ? QvTransfer_CannotConnect : result;
}

std::string FtpSession::Absolute(const std::string& path) const {
  return path.starts_with('/') ? path : home_ + path;
}

void FtpSession::SetUp(CurlRequest& request, const std::string& path) const {
  const FtpServer& server = servers_[current_];
  request.Set(CURLOPT_URL, (server.url + '/' + text::PercentEncoded(path, "/")).c_str());
  request.Set(CURLOPT_PATH_AS_IS, 1L);
  request.Set(CURLOPT_PROTOCOLS_STR, "ftp");
  // Uses whole paths in every command, so that nothing depends on the current folder of the server.
  request.Set(CURLOPT_FTP_FILEMETHOD, static_cast<long>(CURLFTPMETHOD_NOCWD));
  if (!server.user.empty()) {
    request.Set(CURLOPT_USERNAME, server.user.c_str());
    request.Set(CURLOPT_PASSWORD, server.password.c_str());
  }
  if (server.has_tls) {
    request.Set(CURLOPT_USE_SSL, static_cast<long>(CURLUSESSL_ALL));
    request.Set(CURLOPT_FTPSSLAUTH, static_cast<long>(CURLFTPAUTH_TLS));
    // With later versions, a server sends session tickets after the handshake. If the data
    // connection is already closed then, the end of an upload is lost without an error on either
    // side.
    constexpr long kLowest = CURL_SSLVERSION_TLSv1_2;
    constexpr long kHighest = CURL_SSLVERSION_MAX_TLSv1_2;
    request.Set(CURLOPT_SSLVERSION, kLowest | kHighest);
  }
  // Opens data connections to the server of the login, whatever address it announces.
  request.Set(CURLOPT_FTP_SKIP_PASV_IP, 1L);
  // libcurl 7.88 negotiates no TLS on connections that the server opens, and would send files
  // unencrypted.
  if (!is_passive_ && !server.has_tls) request.Set(CURLOPT_FTPPORT, "-");
  const auto connecting = static_cast<long>(settings_.connect_timeout.count());
  const auto waiting = static_cast<long>(settings_.io_timeout.count());
  // libcurl counts the login as part of connecting.
  request.Set(CURLOPT_CONNECTTIMEOUT_MS, connecting + waiting);
  request.Set(CURLOPT_ACCEPTTIMEOUT_MS, connecting);
  request.Set(CURLOPT_SERVER_RESPONSE_TIMEOUT, waiting / 1000 + 1);
}

QvTransferResult FtpSession::Perform(CurlRequest& request) {
  QvTransferResult result = Judge(request, request.Perform());
  // The server was reachable a moment ago.
  if (result == QvTransfer_CannotConnect) result = QvTransfer_Broken;
  is_open_ = LeavesOrder(request.Code()) && result != QvTransfer_Broken;
  return result;
}

FtpFileState FtpSession::StateOf(QvTransferResult result) const {
  FtpFileState state{.result = result, .size = {}, .written = {}};
  curl_off_t length = -1;
  curl_off_t written = -1;
  curl_easy_getinfo(handle_.Easy(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
  curl_easy_getinfo(handle_.Easy(), CURLINFO_FILETIME_T, &written);
  if (length >= 0) state.size = static_cast<std::uint64_t>(length);
  if (written >= 0) state.written = written;
  return state;
}

FtpFileState FtpSession::Look(const std::string& path) {
  const QvTransferResult reached = Reach();
  if (reached != QvTransfer_Success) return {.result = reached, .size = {}, .written = {}};
  CurlRequest request(handle_, settings_);
  SetUp(request, path);
  request.Set(CURLOPT_NOBODY, 1L);
  request.Set(CURLOPT_FILETIME, 1L);
  return StateOf(Perform(request));
}

FtpFileState FtpSession::Get(const FtpTransfer& transfer, BodySink& sink, TransferMeter& meter) {
  const QvTransferResult reached = Reach();
  if (reached != QvTransfer_Success) return {.result = reached, .size = {}, .written = {}};
  CurlRequest request(handle_, settings_);
  SetUp(request, transfer.path);
  request.Set(CURLOPT_FILETIME, 1L);
  request.Set(CURLOPT_TRANSFERTEXT, transfer.is_text ? 1L : 0L);
  request.Set(CURLOPT_RESUME_FROM_LARGE, static_cast<curl_off_t>(transfer.offset));
  request.Receive(sink);
  request.ReportTo(meter, transfer.offset, 0);
  FtpFileState state = StateOf(Perform(request));
  if (state.size) *state.size += transfer.offset;
  if (state.result == QvTransfer_Refused && request.AnswerCode() == 550) {
    state.result = QvTransfer_NotFound;
  }
  return state;
}

QvTransferResult FtpSession::Put(const FtpTransfer& transfer, BodySource& source,
                                 TransferMeter& meter) {
  if (!source.Seek(transfer.offset)) return QvTransfer_LocalFile;
  const QvTransferResult reached = Reach();
  if (reached != QvTransfer_Success) return reached;
  CurlRequest request(handle_, settings_);
  SetUp(request, transfer.path);
  request.Set(CURLOPT_UPLOAD, 1L);
  request.Set(CURLOPT_TRANSFERTEXT, transfer.is_text ? 1L : 0L);
  request.Set(CURLOPT_CRLF, transfer.is_text ? 1L : 0L);
  // Converted text may be longer than the file.
  const auto size = transfer.is_text ? curl_off_t{-1} : static_cast<curl_off_t>(transfer.size);
  request.Set(CURLOPT_INFILESIZE_LARGE, size);
  request.Set(CURLOPT_RESUME_FROM_LARGE, static_cast<curl_off_t>(transfer.offset));
  request.Send(source);
  request.ReportTo(meter, transfer.offset, transfer.size);
  return Perform(request);
}

FtpAnswer FtpSession::Command(const std::string& line) {
  const QvTransferResult reached = Reach();
  if (reached != QvTransfer_Success) return {reached, 0};
  CurlRequest request(handle_, settings_);
  SetUp(request, "/");
  request.Set(CURLOPT_NOBODY, 1L);
  // The asterisk keeps libcurl from closing the connection if the command is refused.
  request.AddLine(CURLOPT_QUOTE, '*' + line);
  const QvTransferResult result = Perform(request);
  if (result != QvTransfer_Success) return {result, 0};
  const long code = request.AnswerCode();
  if (code < 400) return {result, code};
  const QvTransferResult refusal = Refusal(code);
  if (refusal == QvTransfer_Broken) is_open_ = false;
  return {refusal, code};
}

FtpAnswer FtpSession::List(const std::string& folder, const char* command, BodySink& sink) {
  const QvTransferResult reached = Reach();
  if (reached != QvTransfer_Success) return {reached, 0};
  CurlRequest request(handle_, settings_);
  SetUp(request, folder.ends_with('/') ? folder : folder + '/');
  // Names with blanks or asterisks are safer in CWD than in the listing command.
  request.Set(CURLOPT_FTP_FILEMETHOD, static_cast<long>(CURLFTPMETHOD_SINGLECWD));
  request.Set(CURLOPT_CUSTOMREQUEST, command);
  const auto deadline = kListingPatience * settings_.io_timeout;
  request.Set(CURLOPT_TIMEOUT_MS, static_cast<long>(deadline.count()));
  request.Receive(sink);
  const QvTransferResult result = Perform(request);
  const long code = request.AnswerCode();
  if (code != 550) return {result, code};
  // The error is about the folder or only about the listing.
  const bool is_folder = request.Code() == CURLE_FTP_COULDNT_RETR_FILE;
  return {is_folder ? QvTransfer_Refused : QvTransfer_NotFound, code};
}

}  // namespace qv::components
