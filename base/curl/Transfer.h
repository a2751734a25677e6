// One transfer of libcurl, run on the caller's thread.
#pragma once

#include <curl/curl.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace qv::curl {

// A libcurl handle with the connection that it keeps open between requests. Use from one thread at
// a time. The destructor closes the connection.
class CurlHandle {
 public:
  // The first handle initializes libcurl. Throws std::bad_alloc if libcurl gives none.
  CurlHandle();

  [[nodiscard]] CURL* Easy() const { return easy_.get(); }
  [[nodiscard]] CURLM* Multi() const { return multi_.get(); }

 private:
  template <auto kFree>
  struct Free {
    template <class Handle>
    void operator()(Handle* handle) const {
      kFree(handle);
    }
  };

  // Owns the connection, so it must outlive the transfer.
  std::unique_ptr<CURLM, Free<curl_multi_cleanup>> multi_;
  std::unique_ptr<CURL, Free<curl_easy_cleanup>> easy_;
};

// What a handler answers when it is given bytes or asked for some.
enum class Next { kGoOn, kPause, kFail };

// The number of bytes of the bodies that were moved so far.
struct Progress {
  std::uint64_t sent = 0;
  std::uint64_t received = 0;
  std::uint64_t to_receive = 0;  // total; 0 if unknown
};

// Handles the bytes of a transfer. Only called by Transfer::RunUntil, on its thread. An exception
// ends the transfer and is passed on by RunUntil.
class Handler {
 public:
  // Puts the next bytes of the request's body into `room` and their number into `count`, which is 0
  // at first and stays 0 at the end. kPause suspends sending until the next RunUntil.
  virtual Next Send(std::span<char> room, std::size_t& count) = 0;
  // Makes the next Send start `offset` bytes after the beginning of the body. Returns false if that
  // is impossible.
  virtual bool Rewind(std::uint64_t) { return false; }
  // Takes a line that the server sends outside a body. Returning false ends the transfer.
  virtual bool TakeLine(std::span<const char>) { return true; }
  // Takes bytes of the answer's body, all or none. After kPause, the same bytes are offered again
  // in the next RunUntil.
  virtual Next TakeBody(std::span<const char> bytes) = 0;
  // Called several times per second, and at least once per LongestWait(). Returning false ends the
  // transfer.
  virtual bool GoesOn(const Progress&) { return true; }
  // The longest time for which the transfer may wait without asking GoesOn.
  [[nodiscard]] virtual std::chrono::milliseconds LongestWait() const {
    return std::chrono::milliseconds(100);
  }

 protected:
  ~Handler() = default;
};

struct Deadlines {
  // For name lookup, connecting and the TLS handshake together.
  std::chrono::milliseconds connect;
  // For each period in which nothing is moved. Lines outside a body count as well, but only for
  // kLinesPatience such periods: a server could send them for ever.
  std::chrono::milliseconds progress;
};

inline constexpr int kLinesPatience = 4;

// The constructor sets what all transfers have in common: deadlines, the verification of
// certificates, and no settings from the environment. A name lookup that hangs is abandoned;
// libcurl runs it on a thread of its own. Use from one thread at a time.
class Transfer {
 public:
  // If the server closes a kept connection under a request, libcurl would connect again and repeat
  // the request. kOnce forbids that, because the server may have acted on it.
  enum class Sending { kOnce, kAgain };

  // Uses `handle` and `handler` until destroyed, and leaves the handle without options. `ca_file`
  // holds the authorities for certificates in PEM; empty for those of the system.
  Transfer(CurlHandle& handle, Handler& handler, const Deadlines& deadlines,
           const std::string& ca_file, Sending sending);
  ~Transfer();
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  // libcurl keeps its own copy of texts.
  template <class Value>
  void Set(CURLoption option, Value value) {
    const CURLcode set = curl_easy_setopt(easy_, option, value);
    if (set_up_ == CURLE_OK) set_up_ = set;
  }
  // Adds a line to an option that takes a list. A transfer can have one such option.
  void AddLine(CURLoption option, const std::string& line);
  // Returns false if an option was refused, as libcurl refuses very long texts.
  [[nodiscard]] bool IsSetUp() const { return set_up_ == CURLE_OK; }

  // Starts or resumes the transfer and runs it until `is_done` returns true. Returns false if the
  // transfer ended before that; Outcome() tells how. Throws std::bad_alloc and whatever the handler
  // throws.
  template <class Condition>
  bool RunUntil(const Condition& is_done) {
    if (is_done()) return true;
    for (Resume(); !outcome_; Wait()) {
      Perform();
      if (is_done()) return true;
    }
    return false;
  }

  // Returns true if a server was ready for the request, so that it may have received a byte.
  [[nodiscard]] bool HasBegun() const { return attempts_ != 0; }
  // How the transfer ended, or nothing while it has not. A deadline that passed is
  // CURLE_ABORTED_BY_CALLBACK or CURLE_OPERATION_TIMEDOUT. If the handler ended it, this is
  // CURLE_ABORTED_BY_CALLBACK or CURLE_WRITE_ERROR.
  [[nodiscard]] std::optional<CURLcode> Outcome() const { return outcome_; }
  // Returns true if a deadline passed, and whether that happened before the connection stood.
  [[nodiscard]] bool IsTooLate() const {
    return is_too_late_ || outcome_ == CURLE_OPERATION_TIMEDOUT;
  }
  [[nodiscard]] bool IsConnecting() const { return is_connecting_; }
  // What libcurl says about a transfer that failed, which is more than the outcome alone.
  [[nodiscard]] std::string_view ErrorText() const;
  // The status code of the last answer in the protocol of the server, or 0.
  [[nodiscard]] long AnswerCode() const;

 private:
  using Clock = std::chrono::steady_clock;
  struct FreeList {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };

  // Callbacks of libcurl; `self` is the transfer.
  static int OnLookup(void*, void*, void* self) noexcept;
  static int OnSocket(void* self, curl_socket_t, curlsocktype purpose) noexcept;
  static int OnReady(void* self, char*, char*, int, int) noexcept;
  static std::size_t OnSend(char* room, std::size_t size, std::size_t count, void* self) noexcept;
  static int OnSeek(void* self, curl_off_t offset, int origin) noexcept;
  static std::size_t OnLine(char* line, std::size_t size, std::size_t count, void* self) noexcept;
  static std::size_t OnBody(char* bytes, std::size_t size, std::size_t count, void* self) noexcept;
  static int OnProgress(void* self, curl_off_t to_receive, curl_off_t received, curl_off_t,
                        curl_off_t sent) noexcept;

  void SetUpTrust(const std::string& ca_file);
  void SetUpCallbacks();
  void BeginToConnect();
  // Calls `act` with the handler. Returns false if it threw.
  template <class Act>
  bool Try(const Act& act) noexcept;
  [[nodiscard]] bool IsInTime(std::uint64_t moved);
  // Lets both periods begin.
  void NoteMove();

  void Resume();
  void Perform();
  void Wait();

  CurlHandle& handle_;
  CURL* easy_;
  Handler& handler_;
  const Deadlines deadlines_;
  const Sending sending_;
  std::unique_ptr<curl_slist, FreeList> lines_;

  CURLcode set_up_ = CURLE_OK;
  bool is_added_ = false;
  bool is_connecting_ = false;
  bool is_too_late_ = false;
  int attempts_ = 0;
  std::optional<CURLcode> outcome_;
  std::exception_ptr thrown_;
  std::array<char, CURL_ERROR_SIZE> error_text_{};

  std::size_t line_bytes_ = 0;
  std::size_t seen_line_bytes_ = 0;
  std::uint64_t moved_ = 0;
  Clock::time_point last_move_;
  Clock::time_point last_progress_;  // the last move or line
  std::chrono::milliseconds wait_{1};
};

}  // namespace qv::curl
