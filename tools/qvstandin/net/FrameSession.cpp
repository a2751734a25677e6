#include "FrameSession.h"

#include <cstddef>
#include <random>
#include <utility>

#include "FrameExchange.h"

namespace qv::standin {

std::string NewSecret() {
  constexpr std::size_t kDigits = 32;
  std::random_device random;  // a seeded generator could be predicted
  std::uniform_int_distribution<std::size_t> digit(0, 15);
  std::string secret;
  while (secret.size() < kDigits) secret += "0123456789abcdef"[digit(random)];
  return secret;
}

bool SameSecret(std::string_view secret, std::string_view given) {
  std::size_t difference = secret.size() ^ given.size();
  for (std::size_t i = 0; i < given.size(); ++i) {
    const char expected = secret.empty() ? '\0' : secret[i % secret.size()];
    difference |= static_cast<unsigned char>(expected ^ given[i]);
  }
  return difference == 0;
}

std::optional<std::chrono::milliseconds> ProgressClock::IsDue() {
  const Clock::time_point now = Clock::now();
  if (now < next_) return std::nullopt;
  next_ = now + std::chrono::seconds(1);
  return std::chrono::duration_cast<std::chrono::milliseconds>(now - start_);
}

ProgressFrame ProgressOf(std::chrono::milliseconds at_work) {
  return wire::EncodeHeader({.kind = wire::FrameKind::kProgress,
                             .token_length = 0,
                             .payload_length = static_cast<std::uint64_t>(at_work.count()),
                             .file_length = {}});
}

ServedCommand RecordOfRefusal(const ClientStream& client, std::string why,
                              error::Class error_class) {
  return {.command = 0,
          .database = {},
          .outcome = std::move(why),
          .bytes = 0,
          .time = {},
          .error_class = error_class,
          .peer = client.PeerName()};
}

bool AwaitRequest(ClientStream& client, const Services& services, const SessionRules& rules) {
  if (services.kept == nullptr) return client.WaitForRequest(rules.idle_timeout);
  services.kept->Refresh();
  return client.WaitForRequest(rules.idle_timeout, [&services] { services.kept->Clear(); });
}

void FrameSession::Serve() {
  while (AwaitRequest(stream_, services_, rules_) && ServeRequest()) {
  }
}

bool FrameSession::ServeRequest() {
  FrameExchange exchange(stream_, services_, rules_);
  if (version_ > 1) exchange.TakeReasons();
  const wire::FrameStatus status = exchange.Receive(stream_, Expected());
  is_new_ = false;
  if (status != wire::FrameStatus::kDone) {
    if (status != wire::FrameStatus::kConnectionLost) Reject(exchange, status);
    return false;
  }
  return exchange.IsHello() ? Greet(exchange.Kind()) : Answer(exchange);
}

wire::FrameKinds FrameSession::Expected() const {
  if (is_new_) return wire::kFirstFromClient;
  const wire::FrameKinds requests = wire::kRequestsOfVersion3;
  return requests.first(version_ == 3 ? 2 : 1);
}

bool FrameSession::Greet(wire::FrameKind hello) {
  version_ = hello == wire::FrameKind::kHello3 ? 3 : 2;
  if (version_ == 3) stream_.AllowAhead(wire::kRequestWindow);
  return wire::SendHello(stream_, hello);
}

void FrameSession::Reject(FrameExchange& exchange, wire::FrameStatus status) {
  exchange.Refuse(status);
  if (version_ > 1 && exchange.Send(stream_)) stream_.SayGoodbye();
}

bool FrameSession::Answer(FrameExchange& exchange) {
  ProgressClock clock;
  const auto is_abandoned = [&] {
    const auto at_work = version_ > 1 ? clock.IsDue() : std::nullopt;
    if (at_work) stream_.WriteSoon(ProgressOf(*at_work));
    return stream_.IsGone();
  };
  const AnswerForm form{.dialect = Dialect::kRowset, .packed = false};
  if (!exchange.Answer(form, is_abandoned) || !exchange.Send(stream_)) return false;
  // The requests that have come after the refused one must not cost the client its reply.
  if (!exchange.IsAllowed() && version_ == 3) stream_.SayGoodbye();
  return exchange.IsAllowed();
}

}  // namespace qv::standin
