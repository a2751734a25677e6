#include <cerrno>
#include <cstring>
#include <exception>
#include <iostream>
#include <variant>

#include "tools/qvcall/commands/Commands.h"
#include "tools/qvcall/files/FileCommands.h"
#include "tools/qvcall/options/CommandLine.h"
#include "tools/qvcall/queues/QueueCommands.h"
#include "tools/qvcall/system/Terminal.h"

namespace {

int Run(int argc, char** argv) {
  const qv::tool::ParsedCommandLine parsed =
      qv::tool::ParseCommandLine(argc, argv, std::cout, std::cerr);
  if (parsed.exit_status) return *parsed.exit_status;
  const qv::tool::CommandLine& command = parsed.command;
  const qv::tool::ConnectionOptions& connection = command.connection;
  if (command.query) {
    return qv::tool::Run(connection, *command.query, std::cin, std::cout, std::cerr);
  }
  if (command.exec) return qv::tool::Run(connection, *command.exec, std::cin, std::cerr);
  if (command.batch) return qv::tool::Run(connection, *command.batch, std::cin, std::cerr);
  if (command.store) {
    return std::visit(
        [&](const auto& store) { return qv::tool::Run(connection, store, std::cout, std::cerr); },
        *command.store);
  }
  if (command.queue) return qv::tool::Run(connection, *command.queue, std::cin, std::cerr);
  return qv::tool::RunPing(connection, std::cout, std::cerr);
}

// A command has succeeded only if all of its output was written.
int AfterFlush(int status) {
  std::cout.flush();
  if (std::cout.good()) return status;
  // Only a failed write makes the stream bad, and errno was not changed since.
  const char* reason = errno != 0 ? std::strerror(errno) : "cannot be written";
  std::cerr << "qvcall: standard output: " << reason << '\n';
  return qv::tool::kFailed;
}

}  // namespace

int main(int argc, char** argv) {
  const qv::tool::Startup startup;
  if (!qv::tool::Startup::HasWholeArguments()) {
    std::cerr << "qvcall: an argument has characters that the system's code page lacks\n";
    return qv::tool::kUsage;
  }
  try {
    return AfterFlush(Run(argc, argv));
  } catch (const std::exception& error) {
    std::cerr << "qvcall: " << error.what() << '\n';
    return qv::tool::kFailed;
  }
}
