#include "Diagnostics.h"

namespace qv::odbc {

namespace {

struct KnownState {
  std::string_view start;  // of an SQLSTATE
  error::Class error_class;
};

// The first that fits counts.
constexpr KnownState kKnownStates[] = {
    {"25006", error::kNotAllowed},        // a write while reading
    {"42501", error::kNotAllowed},        // insufficient privilege
    {"40001", error::kBusy},              // a serialization failure
    {"40P01", error::kBusy},              // a deadlock
    {"55P03", error::kBusy},              // a lock is not available
    {"533", error::kBusy},                // too many connections
    {"HYT", error::kTimeLimit},           // the driver's time limit
    {"57014", error::kTimeLimit},         // the engine's time limit
    {"57P", error::kCannotConnect},       // the engine stops or starts
    {"08", error::kCannotConnect},        // no connection
    {"28", error::kCannotConnect},        // the engine refuses the login
    {"3D000", error::kUnknownDatabase},   // no such database
    {kCellTooLong, error::kTooLarge},     // also a value that is too long for its column
    {kTextTooLong, error::kTooLarge},     // of a statement
    {kResultTooLarge, error::kTooLarge},  // also the driver's word for no memory
    {"54", error::kTooLarge},             // a limit of the engine
    {"53", error::kTooLarge},             // no memory, no disk
    {"42P01", error::kUnknownObject},     // no such table
    {"42703", error::kUnknownObject},     // no such column
    {"42883", error::kUnknownObject},     // no such function
    {"42704", error::kUnknownObject},     // no such other object
    {"3F000", error::kUnknownObject},     // no such schema
    {"42S02", error::kUnknownObject},     // no such table
    {"42S12", error::kUnknownObject},     // no such index
    {"42S22", error::kUnknownObject},     // no such column
    {"42S", error::kConstraint},          // it exists already
    {"42P07", error::kConstraint},        // it exists already
    {"42710", error::kConstraint},        // it exists already
    {"42701", error::kConstraint},        // it exists already
    {"42", error::kSyntax},               // anything else about the statement
    {"37", error::kSyntax},               // of drivers before ODBC 3
    {"07", error::kSyntax},               // other arguments than wanted
    {"22", error::kConstraint},           // the type does not hold a value
    {"23", error::kConstraint},           // a key or a check
    {"2B", error::kConstraint},           // other objects depend on it
    {"44", error::kConstraint},           // a view's check
    {"P0", error::kConstraint},           // a procedure raised it
};

}  // namespace

std::string TextOf(const Diagnostics& diagnostics) {
  std::string text;
  for (const Diagnostic& diagnostic : diagnostics) {
    if (!text.empty()) text += ' ';
    text += '[' + diagnostic.state + "] " + diagnostic.text;
  }
  return text;
}

std::optional<error::Class> ClassOfState(std::string_view state) {
  for (const KnownState& known : kKnownStates) {
    if (state.starts_with(known.start)) return known.error_class;
  }
  return std::nullopt;
}

}  // namespace qv::odbc
