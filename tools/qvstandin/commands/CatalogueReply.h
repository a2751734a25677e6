// Replies that open with a decimal number: above 0 when the command was done.
#pragma once

#include <cstdint>
#include <string_view>

#include "Command.h"

namespace qv::standin {

inline constexpr std::string_view kYes = "1";
inline constexpr std::string_view kNo = "0";

// What fits into the blocks that clients have for replies, beside the header and the fields that
// tell how much it is.
inline constexpr std::uint64_t kShortListing = 512'000 - 512;
inline constexpr std::uint64_t kLongListing = 1'048'576 - 512;

inline void Refuse(Reply& reply, Outcome outcome) {
  reply.fields.Text(kNo);
  reply.outcome = std::move(outcome);
}

inline void AnswerYesOrNo(Reply& reply, Outcome outcome) {
  if (!outcome.Ok()) return Refuse(reply, std::move(outcome));
  reply.fields.Text(kYes);
}

inline Outcome FieldMissing() { return {ErrorCode::kMalformedRequest, "a field is missing"}; }

// A record as it stands in a field.
template <class Record>
std::string_view RecordBytes(const Record& record) {
  return {reinterpret_cast<const char*>(record.bytes), sizeof record.bytes};
}

}  // namespace qv::standin
