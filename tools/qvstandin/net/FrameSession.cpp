#include "FrameSession.h"

#include <cstddef>
#include <random>

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

void FrameSession::Serve() {
  std::chrono::milliseconds longest = rules_.first_timeout;
  while (stream_.WaitForRequest(longest) && ServeRequest()) longest = rules_.idle_timeout;
}

bool FrameSession::ServeRequest() {
  FrameExchange exchange(services_, rules_);
  const wire::FrameStatus status = exchange.Receive(stream_);
  if (status != wire::FrameStatus::kDone) {
    const bool is_its_fault =
        status != wire::FrameStatus::kConnectionLost && status != wire::FrameStatus::kFileFailed;
    if (is_its_fault) rules_.on_malformed_frame();
    return false;
  }
  const AnswerForm form{.dialect = Dialect::kRowset, .packed = false};
  return exchange.Answer(form, [this] { return stream_.IsGone(); }) && exchange.Send(stream_) &&
         exchange.IsAllowed();
}

}  // namespace qv::standin
