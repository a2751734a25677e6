#include "CommandHandlers.h"

#include <utility>

#include "Listings.h"
#include "MessageFields.h"

namespace qv::standin {

namespace {

// Runs a command that takes its path from the name field and answers with a status.
template <class Work>
void WithPath(const Request& request, Reply& reply, Work work) {
  const auto path = PathIn(request.name_field);
  if (!path) return AddFailure(reply, {ErrorCode::kBadName, "no name, or a truncated one"});
  reply.database = *path;
  if (Outcome outcome = work(*path); !outcome.Ok()) return AddFailure(reply, std::move(outcome));
  reply.fields.Text(kSuccess);
}

// Runs a command that takes two paths from its fields and answers with a number.
template <class Work>
void WithTwoPaths(Request& request, Reply& reply, Work work) {
  const auto from = request.fields.Text();
  const auto to = from ? request.fields.Text() : std::nullopt;
  if (!to) return Refuse(reply, FieldMissing());
  reply.database = *from;
  AnswerYesOrNo(reply, work(*from, *to));
}

}  // namespace

void UploadFile(Services& services, Request& request, Reply& reply) {
  WithPath(request, reply, [&](const std::string& path) -> Outcome {
    if (request.file.empty()) return NoFileCame();
    return services.data.Files().Put(path, request.file);
  });
}

void DownloadFile(Services& services, Request& request, Reply& reply) {
  WithPath(request, reply,
           [&](const std::string& path) { return services.data.Files().Open(path, reply.stored); });
}

void DeleteFile(Services& services, Request& request, Reply& reply) {
  WithPath(request, reply,
           [&](const std::string& path) { return services.data.Files().Delete(path); });
}

void SendFileInfo(Services& services, Request& request, Reply& reply) {
  const auto path = request.fields.Text();
  if (!path) return Refuse(reply, FieldMissing());
  reply.database = *path;
  platform::Entry entry;
  Outcome outcome = services.data.Files().Look(*path, entry);
  if (outcome.Ok() && entry.name.size() > kLongestFileName) {
    outcome = {ErrorCode::kBadName, "the name is longer than a record holds"};
  }
  if (!outcome.Ok()) return Refuse(reply, std::move(outcome));
  reply.fields.Text(kYes);
  reply.fields.Bytes(FileRecords({&entry, 1}));
}

void CopyFile(Services& services, Request& request, Reply& reply) {
  WithTwoPaths(request, reply, [&](const std::string& from, const std::string& to) {
    return services.data.Files().Copy(from, to, request.limit);
  });
}

void Rename(Services& services, Request& request, Reply& reply) {
  WithTwoPaths(request, reply, [&](const std::string& from, const std::string& to) {
    return services.data.Files().Rename(from, to);
  });
}

}  // namespace qv::standin
