#include "Transfer.h"

#include <algorithm>
#include <new>

namespace qv::curl {

namespace {

// Limit for all lines together with which a server answers one request.
constexpr std::size_t kMaxLineBytes = 64U << 10;
constexpr std::chrono::milliseconds kShortestWait{1};

std::uint64_t Bytes(curl_off_t count) { return count > 0 ? static_cast<std::uint64_t>(count) : 0; }

}  // namespace

CurlHandle::CurlHandle() {
  // libcurl is never cleaned up, because the host may use it as well.
  static const CURLcode is_ready = curl_global_init(CURL_GLOBAL_DEFAULT);
  if (is_ready != CURLE_OK) throw std::bad_alloc();
  multi_.reset(curl_multi_init());
  easy_.reset(curl_easy_init());
  if (!multi_ || !easy_) throw std::bad_alloc();
  // A handle serves one server at a time, so a new connection closes the previous one.
  curl_multi_setopt(multi_.get(), CURLMOPT_MAXCONNECTS, 1L);
}

Transfer::Transfer(CurlHandle& handle, Handler& handler, const Deadlines& deadlines,
                   const std::string& ca_file, Sending sending)
    : handle_(handle),
      easy_(handle.Easy()),
      handler_(handler),
      deadlines_(deadlines),
      sending_(sending) {
  // The connection stays open, which is the purpose of the handle.
  curl_easy_reset(easy_);
  // A host may have signal handlers of its own, and a slow name lookup must not be waited for.
  Set(CURLOPT_NOSIGNAL, 1L);
  Set(CURLOPT_QUICK_EXIT, 1L);
  Set(CURLOPT_ERRORBUFFER, error_text_.data());
  Set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(deadlines_.connect.count()));
  SetUpTrust(ca_file);
  SetUpCallbacks();
}

Transfer::~Transfer() {
  if (is_added_) curl_multi_remove_handle(handle_.Multi(), easy_);
  // The options still refer to members.
  curl_easy_reset(easy_);
}

void Transfer::SetUpTrust(const std::string& ca_file) {
  // The server is the company's own. Proxy settings in the environment are meant for the web, and
  // would expose passwords and files to another machine.
  Set(CURLOPT_FOLLOWLOCATION, 0L);
  Set(CURLOPT_PROXY, "");
  Set(CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
  Set(CURLOPT_SSL_VERIFYPEER, 1L);
  Set(CURLOPT_SSL_VERIFYHOST, 2L);
  Set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  if (ca_file.empty()) return;
  Set(CURLOPT_CAINFO, ca_file.c_str());
  Set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
}

void Transfer::SetUpCallbacks() {
  Set(CURLOPT_RESOLVER_START_FUNCTION, &OnLookup);
  Set(CURLOPT_RESOLVER_START_DATA, this);
  Set(CURLOPT_SOCKOPTFUNCTION, &OnSocket);
  Set(CURLOPT_SOCKOPTDATA, this);
  Set(CURLOPT_PREREQFUNCTION, &OnReady);
  Set(CURLOPT_PREREQDATA, this);
  Set(CURLOPT_READFUNCTION, &OnSend);
  Set(CURLOPT_READDATA, this);
  Set(CURLOPT_SEEKFUNCTION, &OnSeek);
  Set(CURLOPT_SEEKDATA, this);
  Set(CURLOPT_HEADERFUNCTION, &OnLine);
  Set(CURLOPT_HEADERDATA, this);
  Set(CURLOPT_WRITEFUNCTION, &OnBody);
  Set(CURLOPT_WRITEDATA, this);
  Set(CURLOPT_XFERINFOFUNCTION, &OnProgress);
  Set(CURLOPT_XFERINFODATA, this);
  Set(CURLOPT_NOPROGRESS, 0L);
}

void Transfer::AddLine(CURLoption option, const std::string& line) {
  curl_slist* const longer = curl_slist_append(lines_.get(), line.c_str());
  if (longer == nullptr) throw std::bad_alloc();
  static_cast<void>(lines_.release());
  lines_.reset(longer);
  Set(option, longer);
}

std::string_view Transfer::ErrorText() const {
  const std::string_view said = error_text_.data();
  if (!said.empty() || !outcome_) return said;
  return curl_easy_strerror(*outcome_);
}

long Transfer::AnswerCode() const {
  long code = 0;
  curl_easy_getinfo(easy_, CURLINFO_RESPONSE_CODE, &code);
  return code;
}

int Transfer::OnLookup(void*, void*, void* self) noexcept {
  static_cast<Transfer*>(self)->BeginToConnect();
  return 0;
}

int Transfer::OnSocket(void* self, curl_socket_t, curlsocktype purpose) noexcept {
  auto& transfer = *static_cast<Transfer*>(self);
  if (transfer.sending_ == Sending::kOnce && transfer.HasBegun()) return CURL_SOCKOPT_ERROR;
  if (purpose == CURLSOCKTYPE_IPCXN) transfer.BeginToConnect();
  return CURL_SOCKOPT_OK;
}

void Transfer::BeginToConnect() {
  if (!is_connecting_) NoteMove();
  is_connecting_ = true;
}

int Transfer::OnReady(void* self, char*, char*, int, int) noexcept {
  auto& transfer = *static_cast<Transfer*>(self);
  transfer.is_connecting_ = false;
  transfer.NoteMove();
  const bool is_first = ++transfer.attempts_ == 1;
  return is_first || transfer.sending_ == Sending::kAgain ? CURL_PREREQFUNC_OK
                                                          : CURL_PREREQFUNC_ABORT;
}

template <class Act>
bool Transfer::Try(const Act& act) noexcept {
  try {
    act(handler_);
    return true;
  } catch (...) {
    thrown_ = std::current_exception();
    return false;
  }
}

std::size_t Transfer::OnSend(char* room, std::size_t size, std::size_t count, void* self) noexcept {
  Next next = Next::kFail;
  std::size_t filled = 0;
  static_cast<Transfer*>(self)->Try([&](Handler& handler) {
    next = handler.Send({room, size * count}, filled);
  });
  if (next == Next::kGoOn) return filled;
  return next == Next::kPause ? CURL_READFUNC_PAUSE : CURL_READFUNC_ABORT;
}

int Transfer::OnSeek(void* self, curl_off_t offset, int origin) noexcept {
  bool is_there = false;
  static_cast<Transfer*>(self)->Try(
      [&](Handler& handler) { is_there = origin == SEEK_SET && handler.Rewind(Bytes(offset)); });
  return is_there ? CURL_SEEKFUNC_OK : CURL_SEEKFUNC_FAIL;
}

std::size_t Transfer::OnLine(char* line, std::size_t size, std::size_t count, void* self) noexcept {
  auto& transfer = *static_cast<Transfer*>(self);
  const std::span<const char> bytes(line, size * count);
  transfer.is_connecting_ = false;
  transfer.line_bytes_ += bytes.size();
  bool is_taken = false;
  if (transfer.line_bytes_ <= kMaxLineBytes) {
    transfer.Try([&](Handler& handler) { is_taken = handler.TakeLine(bytes); });
  }
  return is_taken ? bytes.size() : 0;
}

std::size_t Transfer::OnBody(char* bytes, std::size_t size, std::size_t count,
                             void* self) noexcept {
  Next next = Next::kFail;
  static_cast<Transfer*>(self)->Try([&](Handler& handler) {
    next = handler.TakeBody({bytes, size * count});
  });
  if (next == Next::kPause) return CURL_WRITEFUNC_PAUSE;
  return next == Next::kGoOn ? size * count : 0;
}

// libcurl calls this whenever it is driven, and also while it waits by itself, as it does for the
// final answer of an FTP server.
int Transfer::OnProgress(void* self, curl_off_t to_receive, curl_off_t received, curl_off_t,
                         curl_off_t sent) noexcept {
  auto& transfer = *static_cast<Transfer*>(self);
  const Progress progress{
      .sent = Bytes(sent), .received = Bytes(received), .to_receive = Bytes(to_receive)};
  bool goes_on = transfer.IsInTime(progress.sent + progress.received);
  if (!goes_on) transfer.is_too_late_ = true;
  if (goes_on) transfer.Try([&](Handler& handler) { goes_on = handler.GoesOn(progress); });
  return goes_on && !transfer.thrown_ ? 0 : 1;
}

bool Transfer::IsInTime(std::uint64_t moved) {
  if (line_bytes_ != seen_line_bytes_) last_progress_ = Clock::now();
  if (moved != moved_) NoteMove();
  seen_line_bytes_ = line_bytes_;
  moved_ = moved;
  const auto patience = is_connecting_ ? deadlines_.connect : deadlines_.progress;
  const Clock::time_point now = Clock::now();
  return now - last_progress_ < patience && now - last_move_ < kLinesPatience * patience;
}

void Transfer::NoteMove() {
  last_move_ = Clock::now();
  last_progress_ = last_move_;
}

void Transfer::Resume() {
  if (set_up_ == CURLE_OUT_OF_MEMORY) throw std::bad_alloc();
  if (outcome_) return;
  NoteMove();
  wait_ = kShortestWait;
  if (!IsSetUp()) {
    outcome_ = set_up_;
  } else if (is_added_) {
    const CURLcode resumed = curl_easy_pause(easy_, CURLPAUSE_CONT);
    if (resumed != CURLE_OK) outcome_ = resumed;
  } else {
    if (curl_multi_add_handle(handle_.Multi(), easy_) != CURLM_OK) throw std::bad_alloc();
    is_added_ = true;
  }
}

void Transfer::Perform() {
  int running = 0;
  if (curl_multi_perform(handle_.Multi(), &running) != CURLM_OK) throw std::bad_alloc();
  int left = 0;
  const CURLMsg* const message = curl_multi_info_read(handle_.Multi(), &left);
  if (message != nullptr) outcome_ = message->data.result;
  if (thrown_) std::rethrow_exception(thrown_);
}

// Waits in short steps at first, because an answer may have arrived before libcurl looked for it,
// so that nothing would end a longer wait.
void Transfer::Wait() {
  if (outcome_) return;
  int ready = 0;
  const auto wait = static_cast<int>(wait_.count());
  if (curl_multi_poll(handle_.Multi(), nullptr, 0, wait, &ready) != CURLM_OK) {
    throw std::bad_alloc();
  }
  wait_ = ready != 0 ? kShortestWait : std::min(2 * wait_, handler_.LongestWait());
}

}  // namespace qv::curl
