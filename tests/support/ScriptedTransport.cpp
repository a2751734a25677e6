#include "ScriptedTransport.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "Fields.h"
#include "message/MsgContent.h"
#include "qvnetcall/transport/QvHttpClient.h"
#include "qvnetcall/transport/QvNetClient4.h"

namespace qv::test {

namespace {

constexpr std::uint32_t kGetParameter = 0xFFFFFFFF;
constexpr std::uint32_t kSetParameter = 0xFFFFFFFE;

std::string PayloadOf(const CMsgContent& message) {
  if (message.OverflowStore().Length() != 0) {
    const auto* const bytes = reinterpret_cast<const char*>(message.OverflowStore().Bytes());
    return std::string(bytes, message.OverflowStore().Length()).substr(MessageBlock::kSpillPrefix);
  }
  const CFIFOClass& queue = message.Queue();
  return {reinterpret_cast<const char*>(queue.Area()), queue.WritePosition()};
}

void Fill(CMsgContent& reply, const std::string& payload) {
  if (payload.size() > reply.Queue().Capacity()) throw std::length_error("reply too large");
  std::memcpy(reply.Queue().Area(), payload.data(), payload.size());
  static_cast<void>(reply.Queue().SetFilled(static_cast<std::uint32_t>(payload.size())));
}

bool IsZero(const unsigned char* bytes, std::size_t count) {
  return std::all_of(bytes, bytes + count, [](unsigned char byte) { return byte == 0; });
}

// Looks for bytes of earlier calls, and then writes all over both blocks, as a transport may.
void Scribble(CMsgContent& request, CMsgContent& reply) {
  const CFIFOClass& fields = request.Queue();
  const bool is_clean = IsZero(reply.Block(), reply.BlockSize()) &&
                        (fields.IsDetached() || IsZero(fields.Area() + fields.WritePosition(),
                                                       fields.Capacity() - fields.WritePosition()));
  if (!is_clean) ++ScriptedTransport::Get().unclean_blocks;
  for (const CMsgContent* message : {&request, &reply}) {
    std::memset(message->Block(), '#', message->BlockSize());
  }
}

int AnswerParameter(const SentRequest& request, ScriptedReply& reply) {
  ScriptedTransport& transport = ScriptedTransport::Get();
  const std::string name = request.fields.at(0);
  if (request.command == kSetParameter) {
    const std::string value = request.fields.size() > 1 ? request.fields[1] : "";
    transport.parameter_log.push_back(name + "=" + value);
    transport.parameters[name] = value;
    reply.Text("1");
  } else if (transport.parameters.contains(name)) {
    reply.Text("1").Text(transport.parameters[name]);
  } else {
    reply.Text("0");
  }
  return transport.parameter_result;
}

SentRequest Record(bool web, const char* server, std::uint32_t port, const CMsgContent& request,
                   const CMsgContent& reply, int compress) {
  const std::string payload = PayloadOf(request);
  return {web,
          server,
          port,
          request.Command(),
          payload,
          FieldsOf(payload),
          {reinterpret_cast<const char*>(request.Block()) + MessageBlock::kName,
           MessageBlock::kNameSize},
          request.FileName(),
          request.FileFlag(),
          reply.FileName(),
          reply.FileFlag(),
          request.BlockSize(),
          reply.BlockSize(),
          request.MsgFlag(),
          compress};
}

int Deliver(bool web, const char* server, std::uint32_t port, CMsgContent& message,
            CMsgContent& reply, int compress) {
  ScriptedTransport& transport = ScriptedTransport::Get();
  const SentRequest request = Record(web, server, port, message, reply, compress);
  if (transport.scribbles) Scribble(message, reply);
  ScriptedReply scripted;
  int result = 0;
  if (request.command == kGetParameter || request.command == kSetParameter) {
    result = AnswerParameter(request, scripted);
  } else {
    transport.requests.push_back(request);
    result = transport.handler(request, scripted);
  }
  Fill(reply, scripted.Payload());
  return result;
}

}  // namespace

ScriptedReply& ScriptedReply::Text(std::string_view text) {
  payload_ += Field(text);
  return *this;
}

ScriptedReply& ScriptedReply::Number(std::int32_t number) {
  char bytes[4];
  StoreU32(bytes, static_cast<std::uint32_t>(number));
  return Text({bytes, sizeof bytes});
}

ScriptedTransport& ScriptedTransport::Get() {
  static ScriptedTransport transport;
  return transport;
}

}  // namespace qv::test

using qv::test::ScriptedTransport;

extern "C" {

void NetworkTransInit() { ScriptedTransport::Get().life.push_back("socket init"); }
void NetworkTransFini() { ScriptedTransport::Get().life.push_back("socket fini"); }
void HttpworkTransInit() { ScriptedTransport::Get().life.push_back("web init"); }
void HttpworkTransFini() { ScriptedTransport::Get().life.push_back("web fini"); }

int NetworkTransMsg(const char* server, std::uint32_t port, CMsgContent& request,
                    CMsgContent& reply) {
  return qv::test::Deliver(false, server, port, request, reply, 0);
}

int HttpworkTransMsg(const char* server, std::uint32_t port, CMsgContent& request,
                     CMsgContent& reply, int compress) {
  return qv::test::Deliver(true, server, port, request, reply, compress);
}

int NetworkIsBadState(int n) {
  ScriptedTransport::Get().bad_state_questions.push_back(n);
  return ScriptedTransport::Get().bad_state;
}

void NetworkBadState(int bad) { ScriptedTransport::Get().declared_bad_states.push_back(bad); }

int HttpworkLoginToken(char* token) {
  std::strcpy(token, "scripted-token");
  return 1;
}
}
