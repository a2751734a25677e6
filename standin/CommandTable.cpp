#include "CommandTable.h"

#include <algorithm>
#include <array>

#include "LinkCommand.h"
#include "QueryCommand.h"
#include "StatementCommand.h"

namespace qv::standin {

namespace {

struct Command {
  std::uint32_t code;
  void (*run)(Services&, Request&, Reply&);
};

// Commands                    request fields               reply fields behind the status
constexpr std::array kCommands{
    Command{3, CheckLink},             //
    Command{4, AppendLog},             // kind, text
    Command{200, RunQuery},            // database, text           count, storage kind[, file]
    Command{210, RunPackedQuery},      // database, text           count, storage kind[, file]
    Command{300, RunStatement},        // database, text
    Command{310, RunBatch},            // database, n, n texts     when refused: code, position
    Command{710, SendConnectionText},  // database  in place of the status: "1" and a text, or "0"
    Command{900, RunProcedure},        // database, text           count, storage kind[, file]
};

}  // namespace

Reply Answer(Services& services, Request request) {
  Reply reply;
  const auto command = std::ranges::find(kCommands, request.command, &Command::code);
  if (command == kCommands.end()) {
    AddFailure(reply, {ErrorCode::kUnknownCommand, "no such command"});
  } else {
    command->run(services, request, reply);
  }
  return reply;
}

}  // namespace qv::standin
