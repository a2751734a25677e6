// One HTTP exchange as a stream: what is written is the request's body, what is read the reply's.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "HttpParameters.h"
#include "KeptConnection.h"
#include "transports/frame/ByteStream.h"

namespace qv::wire {

// What a request says beside its body.
struct HttpRequest {
  // The bytes of the body.
  std::uint64_t length = 0;
  // A login token for this server; may be empty.
  std::string login_token;
  // Whether packed answers are welcome.
  bool compress = false;
};

// libcurl runs the exchange on the caller's thread, and only inside Write, Read and End; between
// them it is paused, so neither body is ever held in memory. All of the request is to be written
// before anything is read. One thread at a time.
class HttpStream final : public ByteStream {
 public:
  // `handle` is the stream's until it is destroyed; after anything but a kDone of End it is of no
  // further use.
  HttpStream(KeptConnection& connection, const HttpSettings& settings, const HttpRequest& request);
  ~HttpStream() override;
  HttpStream(const HttpStream&) = delete;
  HttpStream& operator=(const HttpStream&) = delete;

  [[nodiscard]] bool Read(WritableBytes bytes) override;
  [[nodiscard]] bool Write(std::initializer_list<Bytes> pieces) override;
  [[nodiscard]] FrameStatus End() override;

  // Whether a byte of the request may have reached the server.
  [[nodiscard]] bool HasBegun() const { return attempts_ != 0; }
  // After a Read or Write that failed: kMalformed when the server's answer is none that a frame
  // could come in, or is over before its frame is; else kConnectionLost.
  [[nodiscard]] FrameStatus Failure() const;
  // What the server handed out with an answer of status 200; empty when it did not. Valid until
  // destruction.
  [[nodiscard]] std::string_view LoginToken() const;

 private:
  using Clock = std::chrono::steady_clock;
  struct FreeList {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };

  // What libcurl calls; `self` is the stream.
  static int OnSocket(void* self, curl_socket_t, curlsocktype) noexcept;
  static int OnRequest(void* self, char*, char*, int, int) noexcept;
  static std::size_t OnSend(char* buffer, std::size_t size, std::size_t count, void* self) noexcept;
  static std::size_t OnHeader(char* line, std::size_t size, std::size_t count, void* self) noexcept;
  static std::size_t OnBody(char* bytes, std::size_t size, std::size_t count, void* self) noexcept;

  template <class Value>
  void Set(CURLoption option, Value value);
  void SetUpTransfer(const HttpRequest& request);
  void SetUpSecurity();
  void SetUpCallbacks();
  void AddHeader(const std::string& line);

  std::size_t Send(WritableBytes room);
  bool TakeHeader(Bytes line);
  std::size_t TakeBody(Bytes bytes);
  // Whether the headers of the final answer announce a body that frames come in.
  bool IsFrameAhead();

  // Runs the exchange until `is_done` holds. False when it ends or stands still before that.
  template <class Condition>
  [[nodiscard]] bool RunUntil(const Condition& is_done);
  bool Resume();
  bool Perform();
  void NoteProgress();
  [[nodiscard]] bool Wait();

  KeptConnection& connection_;
  const HttpSettings& settings_;
  std::unique_ptr<curl_slist, FreeList> headers_;
  bool is_set_up_ = true;
  bool is_added_ = false;

  // What is still to be taken by libcurl.
  std::vector<Bytes> pieces_;
  std::size_t next_piece_ = 0;
  // Where the bytes that Read waits for go.
  WritableBytes target_;
  // What came with them and is for the next Read. Because receiving pauses while there is any, one
  // helping is all that it ever holds.
  std::array<unsigned char, CURL_MAX_WRITE_SIZE> surplus_;
  WritableBytes unread_;

  int attempts_ = 0;
  std::size_t header_bytes_ = 0;
  bool has_all_headers_ = false;
  bool has_status_200_ = false;
  bool is_malformed_ = false;
  // How the exchange ended, once it has.
  std::optional<CURLcode> outcome_;

  Clock::time_point last_progress_;
  std::uint64_t progress_ = 0;
};

}  // namespace qv::wire
