#include <fmt/format.h>
#include <sqlite3.h>

#include <CLI/CLI.hpp>
#include <boost/asio/signal_set.hpp>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <map>
#include <string>

#include "base/platform/Platform.h"
#include "tools/qvstandin/net/StandIn.h"

namespace {

constexpr sqlite3_int64 kMostDatabaseMemory = sqlite3_int64{1} << 30;

int Run(const qv::StandInOptions& options) {
  // Bounds what all queries need together; a query that needs more fails.
  sqlite3_hard_heap_limit64(kMostDatabaseMemory);
  boost::asio::io_context context;
  // Installed before the first line is printed, so that a program that waits for it can stop the
  // server at once.
  boost::asio::signal_set signals(context, SIGINT, SIGTERM);
  // A second signal has its default effect: it ends the process if stopping takes too long.
  signals.async_wait([&signals](const auto&, int) {
    boost::system::error_code ignored;
    signals.clear(ignored);
  });
  qv::platform::SurviveFileLimits();  // hitting a file size limit fails one request only
  qv::platform::SurviveClosedPipes();

  qv::StandIn server(options);
  std::string error;
  if (!server.Start(&error)) {
    fmt::print(stderr, "qvstandin: {}\n", error);
    return 1;
  }
  fmt::print("listening on {}:{}\n", options.listen, server.Port());
  if (options.http_port) fmt::print("http on {}:{}\n", options.listen, server.HttpPort());
  std::fflush(stdout);
  context.run();
  server.Stop();
  return 0;
}

CLI::Validator Bytes() { return CLI::AsSizeValue(false); }

// Accepts a time in seconds, or with one of the units ms, s, min and h, and makes it milliseconds.
CLI::Validator Time() {
  const auto to_milliseconds = [](std::string& text) {
    const std::map<std::string, std::int64_t> units{
        {"ms", 1}, {"s", 1000}, {"min", 60'000}, {"h", 3'600'000}};
    if (!text.empty() && text.back() >= '0' && text.back() <= '9') text += 's';
    return CLI::AsNumberWithUnit(units)(text);
  };
  return {to_milliseconds, "TIME", "time"};
}

// The time is at least `least` milliseconds.
void AddTime(CLI::App& app, const char* name, std::chrono::milliseconds& time, std::int64_t least,
             const char* what) {
  app.add_option_function<std::int64_t>(
         name, [&time](std::int64_t count) { time = std::chrono::milliseconds(count); }, what)
      ->transform(CLI::Range(least, std::int64_t{7} * 24 * 3'600'000))
      ->transform(Time());
}

void AddLimits(CLI::App& app, qv::StandInOptions& options) {
  constexpr std::uint64_t kMostInFrame = 64ULL << 20;
  constexpr std::uint64_t kMostInCell = 1ULL << 30;
  constexpr std::uint64_t kMost = 1ULL << 60;
  app.add_option("--max-clients", options.connection_limit,
                 "The most clients at once; others are told that the server is busy (64)")
      ->check(CLI::Range(1, 100'000));
  AddTime(app, "--statement-limit", options.statement_limit, 0,
          "The longest time for one request, in seconds or as in 500ms or 10min; 0: none (10min)");
  AddTime(app, "--idle-timeout", options.idle_timeout, 1,
          "How long a client may stay connected without a request (10min)");
  app.add_option("--request-limit", options.request_limit,
                 "The largest request without its file, in bytes or as in 16MB (16MB)")
      ->transform(CLI::Range(std::uint64_t{1024}, kMostInFrame))
      ->transform(Bytes());
  app.add_option("--answer-limit", options.answer_limit, "The largest answer with rows (8GB)")
      ->transform(CLI::Range(std::uint64_t{1024}, kMost))
      ->transform(Bytes());
  app.add_option("--cell-limit", options.cell_limit,
                 "The longest single value (1MB in files of this server, 64MB behind ODBC)")
      ->transform(CLI::Range(std::uint64_t{1024}, kMostInCell))
      ->transform(Bytes());
  app.add_option("--upload-limit", options.upload_limit,
                 "The largest file that clients may send (8GB)")
      ->transform(CLI::Range(std::uint64_t{0}, kMost))
      ->transform(Bytes());
}

struct LogChoice {
  qv::RequestLogOptions options;
  std::string format = "text";
};

void AddLog(CLI::App& app, LogChoice& log) {
  app.add_option("--log", log.options.file,
                 "Write one line per request to this file instead of to standard error");
  app.add_option("--log-size", log.options.size,
                 "The size at which the file is replaced; three older ones are kept (10MB)")
      ->transform(CLI::Range(std::uint64_t{4096}, std::uint64_t{1} << 40))
      ->transform(Bytes());
  app.add_option("--log-format", log.format, "How a line is written")
      ->check(CLI::IsMember({"text", "json"}))
      ->capture_default_str();
  app.add_flag("--log-statements", log.options.with_statements,
               "Include the beginning of each statement, without passwords");
  app.add_flag("--verbose", log.options.is_shown, "With --log, write to standard error as well");
}

}  // namespace

int main(int argc, char** argv) {
  qv::StandInOptions options;
  LogChoice log;
  std::string compress;
  CLI::App app(
      "The stand-in server: answers the platform's commands from a folder of databases and files");
  app.allow_windows_style_options(false);
  app.add_option("--data", options.data_folder, "The data folder; created if it is missing")
      ->required();
  app.add_option("--listen", options.listen, "The address to listen on")->capture_default_str();
  app.add_option("--port", options.port, "The port to listen on; 0 selects a free port")
      ->capture_default_str();
  app.add_option("--http-port", options.http_port,
                 "Also listen for HTTP on this port; 0 selects a free port");
  app.add_option("--token", options.token, "The access token that every request must carry");
  app.add_option("--compress", compress, "Tell clients whether to request compressed answers")
      ->check(CLI::IsMember({"on", "off"}));
  AddLimits(app, options);
  AddLog(app, log);
  CLI11_PARSE(app, argc, argv);
  if (!compress.empty()) options.compress = compress == "on";
  log.options.as_json = log.format == "json";
  qv::RequestLog requests(log.options);
  if (!requests.Open()) {
    fmt::print(stderr, "qvstandin: cannot write the log {}\n", log.options.file);
    return 1;
  }
  options.on_served = [&requests](const qv::ServedCommand& served) { requests.Add(served); };
  return Run(options);
}
