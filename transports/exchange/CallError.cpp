#include "CallError.h"

#include "base/platform/PlainText.h"

namespace qv::wire {

namespace {

// Whole seconds as such, for example "5 s", everything else in milliseconds.
std::string TextOf(std::chrono::milliseconds time) {
  const auto count = time.count();
  return count % 1000 == 0 ? std::to_string(count / 1000) + " s" : std::to_string(count) + " ms";
}

std::string With(std::string text, std::string_view why) {
  if (!why.empty()) text.append(": ").append(why);
  return text;
}

}  // namespace

std::string NameOf(std::string_view server, std::uint32_t port) {
  const bool is_ipv6 = server.find(':') != std::string_view::npos && !server.starts_with('[') &&
                       server.find("://") == std::string_view::npos;
  const std::string name(server);
  return (is_ipv6 ? '[' + name + ']' : name) + ':' + std::to_string(port);
}

CallError CannotConnect(std::string_view peer, std::chrono::milliseconds within,
                        std::string_view why) {
  return {error::kCannotConnect,
          With("cannot connect to " + std::string(peer) + " within " + TextOf(within), why)};
}

CallError NoProgress(std::chrono::milliseconds patience) {
  return {error::kNoProgress, "no progress for " + TextOf(patience)};
}

CallError ConnectionLost(std::string_view peer, std::string_view why) {
  return {error::kConnectionLost,
          With("the connection to " + std::string(peer) + " was lost", why)};
}

CallError Cancelled() { return {error::kCancelled, "cancelled"}; }

CallError NoBlock() {
  return {error::kLocal, "the block of the request or the reply is too small or missing"};
}

CallError Busy(const Reason& why) {
  return {error::kBusy, With("the server is busy", platform::NarrowFromUtf8(why.text))};
}

CallError FromServer(const Reason& reason) {
  return {reason.error_class, platform::NarrowFromUtf8(reason.text)};
}

bool MayKeepConnection(int result, const CallError& error) {
  return result == result::kSuccess && error.error_class != error::kBadToken;
}

}  // namespace qv::wire
