// What the requests to database engines outside this process share.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Database.h"
#include "KeptDatabases.h"
#include "StatementWatch.h"
#include "base/odbc/Diagnostics.h"
#include "base/text/ConnectionText.h"

namespace qv::standin {

// The longest value of an engine in bytes, unless the owner of the server sets another.
inline constexpr std::size_t kLongestEngineCell = std::size_t{64} << 20;

// The way to an engine: what a request needs before it begins.
struct EngineAccess {
  std::string connection_text;  // in ODBC's form
  WorkLimit& limit;             // outlives the request, and nothing else may use it meanwhile
  std::size_t cell_limit = kLongestEngineCell;
  KeptDatabases* kept = nullptr;  // outlives the request
};

// One request, one thread. A watch ends it when its time is up.
class EngineRequest {
 protected:
  explicit EngineRequest(const EngineAccess& access);
  ~EngineRequest();

 public:
  EngineRequest(const EngineRequest&) = delete;
  EngineRequest& operator=(const EngineRequest&) = delete;

 protected:
  // In seconds; 0 means no limit.
  [[nodiscard]] std::uint32_t LongestLogin() const;
  [[nodiscard]] std::uint32_t LongestStatement() const;
  // Returns the failure that `said_` tells, or that of work that is over. After it, no later
  // request gets the connection. `has_states`: the engine classifies its failures.
  [[nodiscard]] Outcome Failure(bool has_states);
  // Returns this failure as one to connect.
  [[nodiscard]] static Outcome CannotConnect(Outcome outcome);
  // Returns whether a later request may have the connection.
  [[nodiscard]] bool LeavesItsSessionClean() const;

  const text::ConnectionText text_;
  const std::optional<std::chrono::milliseconds> time_;
  const std::size_t cell_limit_;
  KeptDatabases* const kept_;
  bool is_clean_ = true;  // as far as the request knows
  std::unique_ptr<StatementWatch> watch_;
  odbc::Diagnostics said_;
};

// Returns the name of a savepoint that no client can guess.
[[nodiscard]] std::string NewMarker();

// Returns an argument as the text, or the null, that engines convert to the type that they need.
[[nodiscard]] std::optional<std::string> AsText(const ProcedureCall::Argument& argument);

}  // namespace qv::standin
