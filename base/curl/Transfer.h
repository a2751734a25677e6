// One transfer of libcurl, run on the caller's thread.
#pragma once

#include <curl/curl.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "CurlHandle.h"

namespace qv::curl {

// What the owner of a transfer answers when it is handed bytes, or asked for some.
enum class Next { kGoOn, kPause, kFail };

// Bytes of bodies that were moved so far.
struct Progress {
  std::uint64_t sent = 0;
  std::uint64_t received = 0;
  std::uint64_t to_receive = 0;  // in all; 0 if unknown
};

// What the owner of a transfer does with its bytes. Only called while Transfer::RunUntil runs, on
// the same thread. An exception ends the transfer and leaves RunUntil.
class Handler {
 public:
  // Puts the next bytes of the request's body into `room` and their number into `count`; none are
  // the end of the body. kPause holds the body back until the next RunUntil.
  virtual Next Send(std::span<char> room, std::size_t& count) = 0;
  // Makes the next Send begin `offset` bytes after the beginning of the body.
  virtual bool Rewind(std::uint64_t) { return false; }
  // Takes a line that the server sends apart from a body. False ends the transfer.
  virtual bool TakeLine(std::span<const char>) { return true; }
  // Takes bytes of the answer's body, all or none. kPause has them offered again in the next
  // RunUntil.
  virtual Next TakeBody(std::span<const char> bytes) = 0;
  // Asked several times a second. False ends the transfer.
  virtual bool GoesOn(const Progress&) { return true; }

 protected:
  ~Handler() = default;
};

struct Deadlines {
  // For looking up the name, connecting and agreeing on TLS, together.
  std::chrono::milliseconds connect;
  // For every stretch in which nothing is moved.
  std::chrono::milliseconds progress;
};

// The constructor sets up what every transfer has in common: deadlines, trust, and nothing from the
// environment. A name lookup that hangs is left behind, on a thread of its own. One thread at a
// time.
class Transfer {
 public:
  // If the server closes a kept connection under a request, libcurl connects and sends it again;
  // kOnce forbids that, for requests that the server may have acted on.
  enum class Sending { kOnce, kAgain };

  // Uses `handle` and `handler` until it is destroyed; the handle has no options then. Certificates
  // are verified by the authorities in `ca_file` (in PEM; empty: the system's).
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
  // Adds a line to an option that takes a list; one such option per transfer.
  void AddLine(CURLoption option, const std::string& line);
  // Returns whether every option was taken. A text can be longer than libcurl takes.
  [[nodiscard]] bool IsSetUp() const { return set_up_ == CURLE_OK; }

  // Runs the transfer, or goes on with it, until `is_done` holds; between calls it is paused as far
  // as the handler asked for it. Returns false if it ended or stood still before that. Throws
  // std::bad_alloc, and what the handler throws.
  template <class Condition>
  bool RunUntil(const Condition& is_done) {
    if (is_done()) return true;
    for (Resume(); !outcome_; Wait()) {
      Perform();
      if (is_done()) return true;
    }
    return false;
  }

  // Whether a server stood ready for the request, so that a byte of it may have arrived.
  [[nodiscard]] bool HasBegun() const { return attempts_ != 0; }
  // How the transfer ended; nothing while it has not. A deadline that passed, and a handler that
  // ended it, are CURLE_ABORTED_BY_CALLBACK or CURLE_WRITE_ERROR.
  [[nodiscard]] std::optional<CURLcode> Outcome() const { return outcome_; }
  // The code that the server answered with in its protocol; 0 if there was none.
  [[nodiscard]] long AnswerCode() const;

 private:
  using Clock = std::chrono::steady_clock;
  struct FreeList {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };

  // What libcurl calls; `self` is the transfer.
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
  // Has the handler act; false if it threw.
  template <class Act>
  bool Try(const Act& act) noexcept;
  [[nodiscard]] bool IsInTime(std::uint64_t moved);

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
  int attempts_ = 0;
  std::optional<CURLcode> outcome_;
  std::exception_ptr thrown_;

  std::size_t line_bytes_ = 0;
  std::uint64_t moved_ = 0;
  Clock::time_point last_progress_;
  std::chrono::milliseconds wait_{1};
};

}  // namespace qv::curl
