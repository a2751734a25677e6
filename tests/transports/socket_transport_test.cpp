#include <gmock/gmock.h>

#include <chrono>
#include <map>
#include <utility>

#include "TransportCall.h"
#include "qvnetcall/transport/QvNetClient4.h"

namespace qv::wire {
namespace {

constexpr const char* kHost = "127.0.0.1";

int SendTo(TransportCall& call, std::uint32_t port) {
  return NetworkTransMsg(kHost, port, call.request, call.reply);
}

struct Call : TransportCall {
  using TransportCall::TransportCall;
  int Send(std::uint32_t port) { return SendTo(*this, port); }
};

// Returns the text fields of the answer to one of the transport's own commands in one line.
std::string Parameter(unsigned int command, const char* name, const char* value = nullptr) {
  Call call(8192);
  call.request.SetCommand(command);
  call.request.AddString(name, nullptr);
  call.request.AddString(value, nullptr);
  EXPECT_EQ(call.Send(0), 0);
  const std::string flag = call.Answer();
  return flag + call.Answer();
}

std::string Get(const char* name) { return Parameter(0xFFFFFFFF, name); }
std::string Set(const char* name, const char* value) { return Parameter(0xFFFFFFFE, name, value); }

class SocketTransport : public testing::Test {
 protected:
  SocketTransport() {
    NetworkTransInit();
    NetworkBadState(0);
  }
  ~SocketTransport() override {
    NetworkTransFini();
    for (const auto& [name, value] : kDefaults) EXPECT_EQ(Set(name, value), "1") << name;
  }

  static inline const std::map<const char*, const char*> kDefaults = {
      {"dispmsg", "1"},
      {"token", nullptr},
      {"connect_timeout_ms", "5000"},
      {"io_timeout_ms", "30000"},
      {"retry_after_ms", "3000"}};
  TempFolder folder_;
};

TEST_F(SocketTransport, TakesAReplyInPiecesThatFillsTheBlock) {
  const std::string text(4096 - 269 - 5, 'x');
  ScriptedServer server([&](ServerSide& side) {
    WholeFrame request;
    if (!side.Receive(request)) return;
    MemoryStream stream;
    const WholeFrame reply{.block = std::string(kFrameBlockSize, 'B'), .payload = Field(text)};
    EXPECT_EQ(SendWhole(stream, FrameKind::kReply, reply), FrameStatus::kDone);
    for (const char& byte : stream.written) side.Write({BytesOfText({&byte, 1})});
  });
  Call call;
  EXPECT_EQ(call.Send(server.Port()), 0);
  EXPECT_EQ(call.reply.Command(), 0x42424242U);
  EXPECT_EQ(call.Answer(), text);
}

TEST_F(SocketTransport, WithoutAServerNothingIsDeliveredAndTheNetworkIsBad) {
  const std::pair<const char*, std::uint32_t> peers[] = {
      {kHost, DeadPort()}, {"no-such-host.invalid", 80}, {nullptr, 80}, {"", 80}, {kHost, 70'000}};
  for (const auto& [server, port] : peers) {
    NetworkBadState(0);
    Call call;
    EXPECT_EQ(NetworkTransMsg(server, port, call.request, call.reply), -1);
    EXPECT_EQ(NetworkIsBadState(1), 1);
  }
}

TEST_F(SocketTransport, ABadNetworkRecoversByAProbeOrADeliveredMessage) {
  ScriptedServer server(ScriptedServer::Echo);
  const auto send = [&] {
    Call call;
    return NetworkTransMsg("localhost", server.Port(), call.request, call.reply);
  };
  EXPECT_EQ(send(), 0);
  Set("retry_after_ms", "3600000");
  NetworkBadState(1);
  EXPECT_EQ(NetworkIsBadState(1), 1);
  EXPECT_EQ(NetworkIsBadState(0), 1);
  EXPECT_EQ(server.Connections(), 1) << "probed too early";
  EXPECT_EQ(send(), 0);
  EXPECT_EQ(NetworkIsBadState(1), 0);

  Set("retry_after_ms", "1");
  NetworkBadState(1);
  EXPECT_EQ(NetworkIsBadState(1), 1);
  while (NetworkIsBadState(0) == 1) {
  }
  Call dead;
  EXPECT_EQ(dead.Send(DeadPort()), -1);
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(20);
  while (std::chrono::steady_clock::now() < end) EXPECT_EQ(NetworkIsBadState(0), 1);
  NetworkBadState(0);
  EXPECT_EQ(NetworkIsBadState(0), 0);
}

TEST_F(SocketTransport, AnswersItsOwnParameters) {
  const struct {
    const char* name;
    const char* value;  // null: left out
    const char* set;
    const char* then;
  } cases[] = {
      {"dispmsg", "0", "1", "10"},
      {"token", "t", "1", "1t"},
      {"token", nullptr, "1", "1"},
      {"connect_timeout_ms", "250", "1", "1250"},
      {"io_timeout_ms", "0", "0", "130000"},
      {"io_timeout_ms", "-5", "0", "130000"},
      {"io_timeout_ms", "10s", "0", "130000"},
      {"io_timeout_ms", "99999999999999999999", "0", "130000"},
      {"retry_after_ms", "3600001", "0", "13000"},
      {"retry_after_ms", nullptr, "0", "13000"},
      {"tls", "1", "0", "10"},
      {"tls", "0", "1", "10"},
      {"ca_file", "/etc/ca.pem", "0", "1"},
      {"no such name", "1", "0", "0"},
      {nullptr, nullptr, "0", "0"},
  };
  for (const auto& one : cases) {
    EXPECT_EQ(Set(one.name, one.value), one.set) << one.name;
    EXPECT_EQ(Get(one.name), one.then) << one.name;
  }
  const std::string long_token(4097, 't');
  EXPECT_EQ(Set("token", long_token.c_str()), "0");
  EXPECT_EQ(Set("token", long_token.c_str() + 1), "1");
  Call small(1024);
  small.request.SetCommand(0xFFFFFFFF);
  small.request.AddString("token", nullptr);
  EXPECT_EQ(small.Send(0), -3);
}

}  // namespace
}  // namespace qv::wire
