// A socket transport as somebody else would write it: it uses the installed headers and nothing
// else of this project. It answers every link check and delivers nothing else.
#include <qvnetcall/message/MsgContent.h>
#include <qvnetcall/transport/QvNetClient4.h>

#include <cstring>

extern "C" {

void NetworkTransInit() {}
void NetworkTransFini() {}

int NetworkTransMsg(const char*, std::uint32_t, CMsgContent& request, CMsgContent& reply) {
  constexpr char kAnswer[] = "\x07\0\0\0SUCCESS";
  if (request.Command() != 3 || reply.Queue().Capacity() < sizeof kAnswer) return -1;
  std::memcpy(reply.Queue().Area(), kAnswer, sizeof kAnswer);
  return reply.Queue().SetFilled(sizeof kAnswer) ? 0 : -3;
}

int NetworkIsBadState(int) { return 0; }
void NetworkBadState(int) {}
}
