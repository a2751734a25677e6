#include "CommandHandlers.h"

#include <string>
#include <utility>

#include "MessageFields.h"
#include "tools/qvstandin/common/ByteSink.h"
#include "tools/qvstandin/stores/StoredFiles.h"
#include "tools/qvstandin/stores/TemporaryFile.h"

namespace qv::standin {

namespace {

std::optional<IdName> ReadNameAndId(FieldReader& fields) {
  auto name = fields.Text();
  const auto id = name ? fields.Integer() : std::nullopt;
  if (!id) return std::nullopt;
  return IdName{*id, std::move(*name)};
}

std::optional<IdName> ReadIdAndName(FieldReader& fields) {
  const auto id = fields.Integer();
  auto name = id ? fields.Text() : std::nullopt;
  if (!name) return std::nullopt;
  return IdName{*id, std::move(*name)};
}

void AnswerStatus(Reply& reply, Outcome outcome) {
  if (!outcome.Ok()) return AddFailure(reply, std::move(outcome));
  reply.fields.Text(kSuccess);
}

// Runs a command that takes its file from the name field and answers with a status.
template <class Work>
void WithIdName(const Request& request, Reply& reply, Work work) {
  const auto wanted = IdNameIn(request.name_field);
  if (!wanted) return AddFailure(reply, {ErrorCode::kBadName, "no name"});
  reply.database = wanted->name;
  AnswerStatus(reply, work(*wanted));
}

// The text that clients show their users.
std::string_view Explain(ErrorCode code) {
  switch (code) {
    case ErrorCode::kMalformedRequest:
      return "the request is not complete";
    case ErrorCode::kBadName:
      return "the name or the identifier cannot be used";
    case ErrorCode::kNoFile:
      return "there is no such file";
    case ErrorCode::kBadPack:
      return "the pack file cannot be read";
    case ErrorCode::kTimedOut:
      return "it takes too long";
    default:
      return "the server cannot do it";
  }
}

void RefuseWithText(Reply& reply, Outcome outcome) {
  const std::string_view text = Explain(outcome.code);
  Refuse(reply, std::move(outcome));
  reply.fields.Text(text);
}

void AnswerChecksum(Reply& reply, Outcome outcome, const Checksum& checksum) {
  if (!outcome.Ok()) return RefuseWithText(reply, std::move(outcome));
  reply.fields.Text(kYes);
  reply.fields.Text(checksum.Text());
  reply.fields.Integer(checksum.Size());
}

// In a pack, an identifier's files are in a folder named by its number; those of 0 are at the top.
Outcome Unpack(Services& services, const std::string& pack, const IdName& wanted, ByteSink& target,
               WorkLimit& limit) {
  if (wanted.id < 0) return {ErrorCode::kBadName, "the identifier is below zero"};
  std::optional<platform::OpenedFile> opened;
  if (Outcome found = services.data.Files().Open(pack, opened); !found.Ok()) return found;
  const std::string member =
      wanted.id == 0 ? wanted.name : std::to_string(wanted.id) + "/" + wanted.name;
  return ReadMember(std::move(*opened), member, services.answer_limit, target, limit);
}

}  // namespace

void UploadIdFile(Services& services, Request& request, Reply& reply) {
  WithIdName(request, reply, [&](const IdName& target) -> Outcome {
    if (request.file.empty()) return NoFileCame();
    return services.data.Ids().Put(target, request.file);
  });
}

void DownloadIdFile(Services& services, Request& request, Reply& reply) {
  WithIdName(request, reply,
             [&](const IdName& wanted) { return services.data.Ids().Open(wanted, reply.stored); });
}

void DeleteIdFile(Services& services, Request& request, Reply& reply) {
  WithIdName(request, reply,
             [&](const IdName& wanted) { return services.data.Ids().Delete(wanted); });
}

void CopyIdFile(Services& services, Request& request, Reply& reply) {
  const auto from = ReadIdAndName(request.fields);
  const auto to = from ? ReadIdAndName(request.fields) : std::nullopt;
  if (!to) return AddFailure(reply, FieldMissing());
  reply.database = from->name;
  AnswerStatus(reply, services.data.Ids().Copy(*from, *to, request.limit));
}

void FindIdFile(Services& services, Request& request, Reply& reply) {
  const auto wanted = ReadIdAndName(request.fields);
  if (!wanted) return AddFailure(reply, FieldMissing());
  reply.database = wanted->name;
  std::optional<platform::OpenedFile> opened;
  AnswerStatus(reply, services.data.Ids().Open(*wanted, opened));
}

void SendIdChecksum(Services& services, Request& request, Reply& reply) {
  const auto wanted = ReadNameAndId(request.fields);
  if (!wanted) return RefuseWithText(reply, FieldMissing());
  reply.database = wanted->name;
  std::optional<platform::OpenedFile> opened;
  Checksum checksum;
  Outcome outcome = services.data.Ids().Open(*wanted, opened);
  if (outcome.Ok()) outcome = ReadAll(std::move(*opened), checksum, request.limit);
  AnswerChecksum(reply, std::move(outcome), checksum);
}

void SendIdPath(Services& services, Request& request, Reply& reply) {
  const auto wanted = ReadNameAndId(request.fields);
  if (!wanted) return RefuseWithText(reply, FieldMissing());
  reply.database = wanted->name;
  std::optional<platform::OpenedFile> opened;
  Outcome outcome = services.data.Ids().Open(*wanted, opened);
  if (!outcome.Ok()) return RefuseWithText(reply, std::move(outcome));
  reply.fields.Text(kYes);
  reply.fields.Text(IdStore::FolderOf(wanted->id) + wanted->name);
}

void SendPackedChecksum(Services& services, Request& request, Reply& reply) {
  const auto pack = request.fields.Text();
  const auto wanted = pack ? ReadNameAndId(request.fields) : std::nullopt;
  if (!wanted) return RefuseWithText(reply, FieldMissing());
  reply.database = *pack;
  Checksum checksum;
  Outcome outcome = Unpack(services, *pack, *wanted, checksum, request.limit);
  AnswerChecksum(reply, std::move(outcome), checksum);
}

void CopyPackedFile(Services& services, Request& request, Reply& reply) {
  const auto pack = request.fields.Text();
  const auto wanted = pack ? ReadNameAndId(request.fields) : std::nullopt;
  const auto target = wanted ? ReadNameAndId(request.fields) : std::nullopt;
  if (!target) return RefuseWithText(reply, FieldMissing());
  reply.database = *pack;
  TemporaryFile unpacked(services.data.IncomingFolder());
  Outcome outcome = Unpack(services, *pack, *wanted, unpacked, request.limit);
  if (outcome.Ok()) outcome = services.data.Ids().Put(*target, unpacked.Path());
  if (!outcome.Ok()) return RefuseWithText(reply, std::move(outcome));
  reply.fields.Text(kYes);
}

}  // namespace qv::standin
