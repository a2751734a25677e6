#include "EngineRequest.h"

#include <fmt/format.h>

#include <algorithm>

#include "Sqlite.h"
#include "base/platform/Platform.h"
#include "base/text/Numbers.h"

namespace qv::standin {

namespace {

using std::chrono_literals::operator""s;
using std::chrono_literals::operator""h;

constexpr std::chrono::milliseconds kLongestLogin = 15s;
constexpr std::chrono::milliseconds kMostForDrivers = 24h;

// The code of a failure of this class.
ErrorCode CodeOf(error::Class error_class) {
  switch (error_class) {
    case error::kNotAllowed:
      return ErrorCode::kNotPermitted;
    case error::kBusy:
      return ErrorCode::kBusy;
    case error::kTimeLimit:
      return ErrorCode::kTimedOut;
    case error::kUnknownDatabase:
    case error::kCannotConnect:
      return ErrorCode::kNoDatabase;
    default:
      return ErrorCode::kSqlFailed;
  }
}

// Sets the code and the class of a failure by the first known state.
void Classify(const odbc::Diagnostics& said, Outcome& outcome) {
  for (const odbc::Diagnostic& record : said) {
    const std::optional<error::Class> known = odbc::ClassOfState(record.state);
    if (!known) continue;
    outcome.code = CodeOf(*known);
    // How the server reaches its engine is not the client's to know.
    outcome.error_class = *known == error::kCannotConnect ? error::kInternal : *known;
    return;
  }
}

// Returns whether the engine's text may be about its own files, hosts or users, not about the
// client's statement.
bool MayNameTheServer(const odbc::Diagnostics& said, const Outcome& outcome) {
  const auto lacks_resources = [](const odbc::Diagnostic& record) {
    return record.state.starts_with("53");
  };
  return outcome.code == ErrorCode::kNoDatabase || outcome.error_class == error::kInternal ||
         std::ranges::any_of(said, lacks_resources);
}

// Cuts off what PostgreSQL and its driver add to the message of a failure: details, which hold rows
// of a table, and that the failure was one.
void CutDetails(odbc::Diagnostics& said) {
  for (odbc::Diagnostic& record : said) {
    for (const std::string_view addition : {"\nDETAIL: ", ";\nError while executing the query"}) {
      record.text.resize(std::min(record.text.find(addition), record.text.size()));
    }
  }
}

std::uint32_t Seconds(std::chrono::milliseconds time) {
  return static_cast<std::uint32_t>(std::chrono::ceil<std::chrono::seconds>(time).count());
}

}  // namespace

EngineRequest::EngineRequest(const EngineAccess& access)
    : text_(access.connection_text),
      time_(access.limit.TimeLeft()),
      cell_limit_(access.cell_limit),
      kept_(access.kept) {
  if (kept_ != nullptr) watch_ = std::move(kept_->watch);
  if (watch_ == nullptr) watch_ = std::make_unique<StatementWatch>();
  watch_->Begin(access.limit);
}

EngineRequest::~EngineRequest() {
  watch_->End();
  if (kept_ != nullptr) kept_->watch = std::move(watch_);
}

std::uint32_t EngineRequest::LongestLogin() const {
  return Seconds(
      std::clamp<std::chrono::milliseconds>(time_.value_or(kLongestLogin), 1s, kLongestLogin));
}

// The watch ends statements first; the driver's own limit is for drivers that cannot cancel.
std::uint32_t EngineRequest::LongestStatement() const {
  constexpr std::uint32_t kNoLimit = 0;
  return time_ && *time_ < kMostForDrivers ? Seconds(*time_) + 1 : kNoLimit;
}

// A statement that was cancelled may have ended before, so that the next one would be cancelled.
bool EngineRequest::LeavesItsSessionClean() const {
  return is_clean_ && watch_->Reason() == ErrorCode::kNone;
}

// Drivers give this failure few states. Their messages name hosts and users.
Outcome EngineRequest::CannotConnect(Outcome outcome) {
  if (outcome.code == ErrorCode::kStopped || outcome.code == ErrorCode::kTimedOut) return outcome;
  const auto says = [&outcome](std::string_view part) {
    return outcome.text.find(part) != std::string::npos;
  };
  if (outcome.code == ErrorCode::kSqlFailed) outcome.code = ErrorCode::kNoDatabase;
  if (outcome.code == ErrorCode::kNoDatabase) outcome.error_class = error::kInternal;
  if (says("too many")) outcome.error_class = error::kBusy;
  if (says("database ") && says("does not exist")) outcome.error_class = error::kUnknownDatabase;
  outcome.is_private = true;
  return outcome;
}

// The driver's message goes to the server's record on one short line, without the values of the
// connection text.
Outcome EngineRequest::Failure(bool has_states) {
  is_clean_ = false;
  if (watch_->Reason() != ErrorCode::kNone) return watch_->Failure();
  CutDetails(said_);
  std::string text =
      text_.WithoutSecrets(odbc::TextOf(said_), text::ConnectionText::Hide::kAllValues);
  std::ranges::replace_if(
      text, [](char ch) { return ch >= 0 && ch < ' '; }, ' ');
  Outcome outcome{ErrorCode::kSqlFailed, text};
  // Drivers without states give the engine's message.
  outcome.error_class = has_states ? error::kInternal : ClassOfSqliteText(text);
  Classify(said_, outcome);
  if (outcome.code == ErrorCode::kTimedOut) outcome.text = "the statement took too long";
  outcome.is_private = MayNameTheServer(said_, outcome);
  return outcome;
}

std::string NewMarker() {
  std::string name = "qv_";
  for (const char ch : platform::NewGuid()) {
    if (text::HexDigitValue(ch) >= 0) name += ch;
  }
  return name;
}

std::optional<std::string> AsText(const ProcedureCall::Argument& argument) {
  if (const auto* whole = std::get_if<std::int64_t>(&argument)) return fmt::to_string(*whole);
  if (const auto* decimal = std::get_if<double>(&argument)) return fmt::to_string(*decimal);
  if (const auto* text = std::get_if<std::string>(&argument)) return *text;
  return std::nullopt;
}

}  // namespace qv::standin
