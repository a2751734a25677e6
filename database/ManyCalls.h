// Many queries or statements that are sent without waiting for each answer.
#pragma once

#include <cstdint>
#include <functional>

#include "AnswerFile.h"
#include "message/MsgContent.h"
#include "qvnetcall/RvoDatabase.h"

namespace qv {

// What tells queries from statements.
struct ManyRules {
  bool together = false;  // whether they may be sent back to back; else they are made one by one
  std::uint32_t command = 0;
  bool has_answer_file = false;  // whether a reply may bring a file
  // The call for one text. Returns its result.
  std::function<int(const CRvoQuery&, CRvoOutcome&)> alone = nullptr;
  // Reads a reply that was delivered. Returns the result of the call.
  std::function<int(const CRvoQuery&, CMsgContent& reply, AnswerFile&, CRvoOutcome&)> read =
      nullptr;
  std::function<bool()> is_offline = nullptr;
};

// Makes the calls and fills `outcomes`. Returns how many of them failed, and leaves the error of
// the first of these.
[[nodiscard]] int RunMany(const ManyRules& rules, const CRvoQuery* queries, CRvoOutcome* outcomes,
                          int count);

}  // namespace qv
