#include "HttpExchange.h"

#include <utility>

#include "CallUrl.h"
#include "transports/exchange/ReceiveReply.h"
#include "transports/exchange/Result.h"

namespace qv::wire {

int HttpExchange::Run(const char* server, std::uint32_t port, bool compress) {
  const auto url = CallUrl(server != nullptr ? server : "", port, settings_.use_tls);
  std::optional<RequestFrame> frame = RequestFrame::Prepare(request_, reply_, settings_.token);
  // A file can be so long that a frame around it has no length that could be announced.
  if (!url || !frame || frame->Length() > kMaxFile) return kNotDelivered;
  const std::uint64_t generation = transport_.pool.Generation();
  connection_ = transport_.pool.Take(*url);
  if (!connection_) connection_ = std::make_unique<KeptConnection>(*url);
  const HttpRequest request{
      .length = frame->Length(), .login_token = transport_.tokens.Of(*url), .compress = compress};
  stream_.emplace(*connection_, settings_, request);
  const int result = Talk(*frame);
  const std::string_view token = stream_->LoginToken();
  if (LoginTokens::IsToken(token)) transport_.tokens.Keep(*url, token);
  stream_.reset();
  if (result == kDelivered) transport_.pool.Give(std::move(connection_), generation);
  return result;
}

int HttpExchange::Interrupted() const {
  return stream_ && stream_->HasBegun() ? kOutcomeUnknown : kNotDelivered;
}

int HttpExchange::Talk(RequestFrame& frame) {
  FrameStatus status = frame.Send(*stream_);
  if (!stream_->HasBegun()) return kNotDelivered;
  // A request that did not get out leaves the outcome open, its own file's failure included, unless
  // the server has refused it meanwhile.
  if (status != FrameStatus::kDone) return ResultOf(stream_->Failure());
  status = ReceiveReply(*stream_, reply_);
  return ResultOf(status == FrameStatus::kConnectionLost ? stream_->Failure() : status);
}

}  // namespace qv::wire
