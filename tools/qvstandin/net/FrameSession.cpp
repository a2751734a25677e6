#include "FrameSession.h"

#include "FrameExchange.h"

namespace qv::standin {

void Session::Serve() {
  std::chrono::milliseconds longest = rules_.first_timeout;
  while (stream_.WaitForRequest(longest) && ServeRequest()) longest = rules_.idle_timeout;
}

bool Session::ServeRequest() {
  Exchange exchange(services_, rules_);
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
