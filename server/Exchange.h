// One request and its reply, of which every call to the server is made.
#pragma once

#include <cstdint>
#include <string_view>

#include "message/KeptBlock.h"
#include "message/MsgContent.h"

namespace qv {

// The status words of replies.
constexpr const char kStatusSuccess[] = "SUCCESS";
constexpr const char kStatusSuccessCompress[] = "SUCCESS_COMPRESS";

// The transport answers these commands itself.
constexpr std::uint32_t kGetTransportParameter = 0xFFFFFFFF;  // name; reply: "1" when known, value
constexpr std::uint32_t kSetTransportParameter = 0xFFFFFFFE;  // name, value; reply: "1" when set

// Returns `result`, and keeps as the error of this thread that the server refused the call, unless
// the server or the transport gave a reason in its own way. `why` is what the reply says, or empty.
int Refused(int result, std::string_view why = {});

// Owns both messages and their blocks. Build the request, send it, read the reply; once each.
class Exchange {
 public:
  // Uses blocks of `request_bytes` and `reply_bytes`; the request carries `command`.
  Exchange(std::uint32_t command, std::uint32_t request_bytes, std::uint32_t reply_bytes);
  ~Exchange();
  Exchange(const Exchange&) = delete;
  Exchange& operator=(const Exchange&) = delete;

  CMsgContent& Request() { return request_; }
  // Appends a number to the request as 4 bytes.
  void AddNumber(std::int32_t number) { request_.AddData(&number, sizeof number, nullptr); }
  CMsgContent& Reply() { return reply_; }
  // Returns whether the reply's next field is "SUCCESS". The call has no error then, whatever the
  // transport said of the reply.
  [[nodiscard]] bool ReadSuccess();

  // Sends over the socket transport to the module's server and returns the transport's result. This
  // and the next two functions set the error of this thread, or clear it.
  [[nodiscard]] int Send();
  // The same, to another server.
  [[nodiscard]] int SendTo(const char* server, std::uint32_t port);
  // The same, over the HTTP transport.
  [[nodiscard]] int SendOverWeb(int compress);

 private:
  [[nodiscard]] bool IsForTransport() const;
  // Returns true, and sets the error, if the call is cancelled already.
  [[nodiscard]] static bool IsCancelledBefore();

  KeptBlock request_block_;
  KeptBlock reply_block_;
  CMsgContent request_;
  CMsgContent reply_;
};

}  // namespace qv
