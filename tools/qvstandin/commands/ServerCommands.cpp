#include "CommandHandlers.h"

#include <array>

namespace qv::standin {

namespace {

// "1", then: the program, its version, the path of the top folder, whether folders can be listed by
// page, whether checksums are available, the encoding of names, and a description.
constexpr std::array<std::string_view, 8> kProgramInfo{
    "1", "qvstandin", "4", FileStore::kTop, "1", "1", "UTF-8", "the stand-in server"};

}  // namespace

void CheckLink(Services&, Request&, Reply& reply) { reply.fields.Text(kSuccess); }

void AppendLog(Services& services, Request& request, Reply& reply) {
  const auto kind = request.fields.Integer();
  const auto text = kind ? request.fields.Text() : std::nullopt;
  if (!text)
    return AddFailure(reply, {ErrorCode::kMalformedRequest, "the kind or the text is missing"});
  if (!services.log.Append(*kind, *text)) {
    return AddFailure(reply, {ErrorCode::kAnswerLost, "the log cannot be written"});
  }
  reply.fields.Text(kSuccess);
}

void SendConnectionText(Services& services, Request& request, Reply& reply) {
  constexpr std::string_view kKnown = "1";
  constexpr std::string_view kUnknown = "0";
  const auto name = request.fields.Text();
  if (!name) return AddFailure(reply, {ErrorCode::kMalformedRequest, "the database is missing"});
  reply.database = *name;
  const std::string* const text = services.data.ConnectionText(*name);
  reply.fields.Text(text != nullptr ? kKnown : kUnknown);
  if (text != nullptr) {
    reply.fields.Text(*text);
  } else {
    reply.outcome = {ErrorCode::kNoDatabase, "no connection text"};
  }
}

void SendProgramInfo(Services&, Request&, Reply& reply) {
  for (const std::string_view text : kProgramInfo) reply.fields.Text(text);
}

}  // namespace qv::standin
