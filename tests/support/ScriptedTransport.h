// Both transports as a script: requests of the library are recorded, and the test chooses the
// replies. Linking this replaces the transport libraries.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace qv::test {

struct SentRequest {
  bool web;
  std::string server;
  std::uint32_t port;
  std::uint32_t command;
  std::string payload;
  std::vector<std::string> fields;
  std::string name_field;  // all 256 bytes
  std::string file_name;
  int file_flag;
  std::string reply_file_name;
  int reply_file_flag;
  std::uint32_t request_block;
  std::uint32_t reply_block;
  int message_flag;
  int compress;
};

// The fields of a reply, as bytes.
class ScriptedReply {
 public:
  ScriptedReply& Text(std::string_view text);
  ScriptedReply& Number(std::int32_t number);
  ScriptedReply& Raw(std::string_view bytes) {
    payload_ += bytes;
    return *this;
  }

  [[nodiscard]] const std::string& Payload() const { return payload_; }

 private:
  std::string payload_;
};

class ScriptedTransport {
 public:
  // Answers a request: fills the reply and returns the transport's result.
  using Handler = std::function<int(const SentRequest&, ScriptedReply&)>;

  static ScriptedTransport& Get();
  // Clears everything; nothing is delivered until a handler is set.
  void Reset() { *this = ScriptedTransport(); }

  Handler handler = [](const SentRequest&, ScriptedReply&) { return -1; };
  // Without requests for the transport's own parameters, which are kept in `parameters`.
  std::vector<SentRequest> requests;
  std::vector<std::string> parameter_log;
  std::map<std::string, std::string> parameters = {{"dispmsg", "1"}};
  int parameter_result = 0;
  int bad_state = 0;
  std::vector<int> bad_state_questions;
  std::vector<int> declared_bad_states;
  std::vector<std::string> life;
  // Write over both blocks of a call; before that, blocks are counted in which bytes of earlier
  // calls are left.
  bool scribbles = false;
  int unclean_blocks = 0;
};

}  // namespace qv::test
