#include "CommandLineParts.h"

#include <algorithm>
#include <iterator>

#include "base/text/Letters.h"

namespace qv::tool {
namespace {

bool IsDirect(const CommandLine& command) { return !command.connection.direct.empty(); }

bool NeedsDatabase(const CommandLine& command) {
  const bool named = (command.query && !command.query->database.empty()) ||
                     (command.exec && !command.exec->database.empty()) ||
                     (command.batch && !command.batch->database.empty());
  return (command.query || command.exec || command.batch) && !named;
}

bool IsEncrypted(const ConnectionOptions& connection) {
  return text::StartsWithIgnoringCase(connection.server, "https://");
}

struct Rule {
  bool (*is_broken)(const CommandLine&);
  std::string_view words;
};

// Checked in this order; only the first broken rule is reported.
constexpr Rule kRules[] = {
    {[](const CommandLine& c) { return IsDirect(c) && c.connection.web; },
     "--web uses a server, and --direct (or QVCALL_DIRECT) a database without one: give only one "
     "of them"},
    {[](const CommandLine& c) { return IsDirect(c) && c.query && c.query->use_cache; },
     "--cache and --offline store answers of a server, and --direct (or QVCALL_DIRECT) uses a "
     "database without one: omit them"},
    {[](const CommandLine& c) { return IsDirect(c) && c.batch.has_value(); },
     "a batch needs a server, and --direct (or QVCALL_DIRECT) uses a database without one: run "
     "its statements one by one with exec"},
    {[](const CommandLine& c) { return IsDirect(c) && (c.store || c.queue); },
     "files, the directory and the log belong to a server, and --direct (or QVCALL_DIRECT) uses a "
     "database without one: omit it"},
    {[](const CommandLine& c) { return IsDirect(c) && c.connection.timeout_ms.has_value(); },
     "--timeout-ms limits the wait for a server, and --direct (or QVCALL_DIRECT) uses a database "
     "without one: set a limit in the connection text"},
    {[](const CommandLine& c) { return !IsDirect(c) && NeedsDatabase(c); },
     "--db is required: the name of the database on the server"},
    {[](const CommandLine& c) { return c.connection.web && c.query && c.query->use_cache; },
     "--cache and --offline cannot be used with --web: a web server does not support offline work"},
    {[](const CommandLine& c) {
       return c.query && c.query->style.format == Format::kJson && c.query->style.null_text;
     },
     "--null cannot be used with --format json, which has a null of its own"},
    {[](const CommandLine& c) {
       return c.query && c.query->style.format != Format::kCsv &&
              (c.query->style.keeps_controls || c.query->style.is_for_spreadsheets);
     },
     "--csv-raw and --csv-safe can only be used with --format csv"},
    {[](const CommandLine& c) { return c.queue && c.connection.web; },
     "--web cannot be used with ftp and cloud, which contact the server only to write to its log, "
     "over the socket transport: omit it, and give --port for the log"},
    {[](const CommandLine& c) {
       return !c.queue && !c.connection.ca_file.empty() && !c.connection.web;
     },
     "--ca-file can only be used with --web: the socket transport does not encrypt"},
    {[](const CommandLine& c) {
       return !c.queue && !c.connection.ca_file.empty() && !IsEncrypted(c.connection);
     },
     "--ca-file has no effect without encryption: begin the name of the server with https://"},
    {[](const CommandLine& c) {
       return (c.batch || c.store) && c.connection.web && IsEncrypted(c.connection);
     },
     "this command always uses the socket transport, which does not encrypt: omit --web and "
     "https://, and give --port"},
    {[](const CommandLine& c) {
       return !IsDirect(c) && c.connection.web && c.connection.Port() == 0;
     },
     "--http-port or --port is required: the port on which the server speaks HTTP"},
    {[](const CommandLine& c) { return !IsDirect(c) && !c.queue && c.connection.Port() == 0; },
     "--port is required: the port of the server"},
};

}  // namespace

std::string_view BrokenRule(const CommandLine& command) {
  const auto* broken = std::find_if(std::begin(kRules), std::end(kRules),
                                    [&](const Rule& rule) { return rule.is_broken(command); });
  return broken != std::end(kRules) ? broken->words : std::string_view();
}

}  // namespace qv::tool
