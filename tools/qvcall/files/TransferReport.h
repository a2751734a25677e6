#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/qvcall/session/Session.h"

namespace qv::tool {

// Says how it goes with each of several files, and at the end how it went with all.
class TransferReport {
 public:
  // Both outlive it.
  TransferReport(const Session& session, std::ostream& err) : session_(session), err_(err) {}

  // `bytes` is none when nobody knows how many they were.
  void Done(std::optional<std::uint64_t> bytes, std::size_t files = 1);
  // The reason is ours, or a call's result.
  void Fail(std::string_view subject, std::string_view reason);
  void Fail(std::string_view subject, Call call, int code);
  [[nodiscard]] bool HasFailures() const { return !failed_.empty(); }
  // Sums up, with a remark on what went well, and gives the exit status.
  [[nodiscard]] int Finish(std::string_view remark = {}) const;

 private:
  const Session& session_;
  std::ostream& err_;
  std::size_t done_ = 0;
  std::optional<std::uint64_t> bytes_ = 0;
  std::string_view last_advice_;
  std::size_t failures_ = 0;
  std::vector<std::string> failed_;  // the first of them
};

}  // namespace qv::tool
