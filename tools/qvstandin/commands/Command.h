// One request being answered.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Fields.h"
#include "tools/qvstandin/common/ServerLog.h"
#include "tools/qvstandin/common/Work.h"
#include "tools/qvstandin/recordsets/AnswerFile.h"
#include "tools/qvstandin/stores/DataFolder.h"

namespace qv::standin {

inline constexpr std::string_view kSuccess = "SUCCESS";
inline constexpr std::string_view kSuccessCompress = "SUCCESS_COMPRESS";
inline constexpr std::string_view kFailure = "FAILURE";
inline constexpr std::string_view kMemory = "MEMORY";
inline constexpr std::string_view kFile = "FILE";

// What all requests share. Any thread.
struct Services {
  DataFolder& data;
  ServerLog& log;
  // Answers of up to so many bytes travel inside the reply.
  std::uint32_t memory_threshold;
  // No answer may take more room than this.
  std::uint64_t answer_limit;
};

enum class Dialect { kRowset, kSchema };

// How a client wants answers that are rows.
struct AnswerForm {
  Dialect dialect = Dialect::kRowset;
  bool packed = false;  // as gzip files, whichever command asks for them
};

struct Request {
  std::uint32_t command;
  FieldReader fields;
  WorkLimit& limit;
  AnswerForm form = {};
  // Of the header block.
  NameField name_field = {};
  // Where the file is that came along, for a command that takes one to move it away; empty when
  // none came, or there was no room for it.
  std::string file = {};
};

struct Reply {
  FieldWriter fields;
  // One of these travels behind the fields, when it is there.
  std::unique_ptr<AnswerFile> file;
  std::optional<platform::OpenedFile> stored;
  // For the server's own record.
  std::string database;
  Outcome outcome;
};

// The status word of a failure and its number.
inline void AddFailure(Reply& reply, Outcome outcome) {
  reply.fields.Text(kFailure);
  reply.fields.Integer(static_cast<std::int32_t>(outcome.code));
  reply.outcome = std::move(outcome);
}

inline Outcome NoFileCame() { return {ErrorCode::kMalformedRequest, "no file, or no room for it"}; }

// Replies that open with a decimal number: above 0 when the command was done.
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

// Carries out the request and gives the reply. A code that is not known is a failure.
[[nodiscard]] Reply Answer(Services& services, Request request);

// Whether a file may come along with the command.
[[nodiscard]] bool TakesFile(std::uint32_t command);

}  // namespace qv::standin
