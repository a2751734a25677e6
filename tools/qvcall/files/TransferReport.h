#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/qvcall/session/Session.h"

namespace qv::tool {

// Prints the failures of several transfers as they happen, and a summary at the end.
class TransferReport {
 public:
  // Both arguments must outlive the report.
  TransferReport(const Session& session, std::ostream& err) : session_(session), err_(err) {}

  // `bytes` is nullopt if it is not known.
  void Done(std::optional<std::uint64_t> bytes, std::size_t files = 1);
  // The reason is given as text, or as the result of a call.
  void Fail(std::string_view subject, std::string_view reason);
  void Fail(std::string_view subject, Call call, int code);
  [[nodiscard]] bool HasFailures() const { return !failed_.empty(); }
  // Prints the summary, with a remark on the successes, and returns the exit status.
  [[nodiscard]] int Finish(std::string_view remark = {}) const;

 private:
  const Session& session_;
  std::ostream& err_;
  std::size_t done_ = 0;
  std::optional<std::uint64_t> bytes_ = 0;
  std::string last_hint_;
  std::size_t failures_ = 0;
  std::vector<std::string> failed_;  // the first of the failures
};

}  // namespace qv::tool
