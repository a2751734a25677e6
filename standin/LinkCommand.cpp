#include "LinkCommand.h"

namespace qv::standin {

void CheckLink(Services&, Request&, Reply& reply) { reply.fields.Text(kSuccess); }

void AppendLog(Services& services, Request& request, Reply& reply) {
  const auto kind = request.fields.Integer();
  const auto text = kind ? request.fields.Text() : std::nullopt;
  if (!text) return AddFailure(reply, {ErrorCode::kMalformedRequest, "kind and text are wanted"});
  if (!services.log.Append(*kind, *text)) {
    return AddFailure(reply, {ErrorCode::kAnswerLost, "the log cannot be written"});
  }
  reply.fields.Text(kSuccess);
}

}  // namespace qv::standin
