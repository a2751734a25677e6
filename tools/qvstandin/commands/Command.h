// Requests, replies, and the way from one to the other.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "MessageFields.h"
#include "tools/qvstandin/common/ServerLog.h"
#include "tools/qvstandin/common/Work.h"
#include "tools/qvstandin/recordsets/AnswerSpool.h"
#include "tools/qvstandin/stores/DataFolder.h"

namespace qv::standin {

inline constexpr std::string_view kSuccess = "SUCCESS";
inline constexpr std::string_view kSuccessCompress = "SUCCESS_COMPRESS";
inline constexpr std::string_view kFailure = "FAILURE";
inline constexpr std::string_view kMemory = "MEMORY";
inline constexpr std::string_view kFile = "FILE";

// What all requests of a client share. Any thread may use it, except what the client keeps.
struct Services {
  DataFolder& data;
  ServerLog& log;
  // Answers up to this size, in bytes, travel inside the reply's fields.
  std::uint32_t memory_threshold;
  // The largest answer, in bytes.
  std::uint64_t answer_limit;
  KeptDatabases* kept = nullptr;  // by the client; null: nothing is kept
};

enum class Dialect { kRowset, kSchema };

// The form in which a client receives rows.
struct AnswerForm {
  Dialect dialect = Dialect::kRowset;
  bool packed = false;  // as gzip files, whatever the command
};

struct Request {
  std::uint32_t command;
  FieldReader fields;
  WorkLimit& limit;
  AnswerForm form = {};
  // Part of the header block.
  NameField name_field = {};
  // The path of the file that came with the request, which the command may move away. Empty if none
  // came or the disk had no room for it.
  std::string file = {};
};

struct Reply {
  FieldWriter fields;
  // At most one of these is set; it is sent after the fields.
  std::unique_ptr<AnswerSpool> file;
  std::optional<platform::OpenedFile> stored;
  // For the server's record of requests.
  std::string database;
  std::string statement;             // the beginning of it; empty if the request has none
  std::optional<std::int32_t> rows;  // of an answer with rows
  Outcome outcome;
};

// Adds the status word of a failure and its number.
inline void AddFailure(Reply& reply, Outcome outcome) {
  reply.fields.Text(kFailure);
  reply.fields.Integer(static_cast<std::int32_t>(outcome.code));
  reply.outcome = std::move(outcome);
}

inline Outcome NoFileCame() {
  return {ErrorCode::kMalformedRequest, "no file came, or there was no room for it"};
}

// Some replies begin with a decimal number in place of a status: above 0 if the command succeeded.
inline constexpr std::string_view kYes = "1";
inline constexpr std::string_view kNo = "0";

inline void Refuse(Reply& reply, Outcome outcome) {
  reply.fields.Text(kNo);
  reply.outcome = std::move(outcome);
}

inline void AnswerYesOrNo(Reply& reply, Outcome outcome) {
  if (!outcome.Ok()) return Refuse(reply, std::move(outcome));
  reply.fields.Text(kYes);
}

inline Outcome FieldMissing() { return {ErrorCode::kMalformedRequest, "a field is missing"}; }

// Executes the request and returns its reply. An unknown code is a failure.
[[nodiscard]] Reply Answer(Services& services, Request request);

// Returns whether the command may carry a file.
[[nodiscard]] bool TakesFile(std::uint32_t command);

}  // namespace qv::standin
