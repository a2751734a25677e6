#include <fmt/format.h>
#include <sqlite3.h>

#include <CLI/CLI.hpp>
#include <boost/asio/signal_set.hpp>
#include <csignal>
#include <cstdio>

#include "base/platform/Platform.h"
#include "tools/qvstandin/net/StandIn.h"

namespace {

constexpr sqlite3_int64 kMostDatabaseMemory = sqlite3_int64{1} << 30;

void PrintServed(const qv::ServedCommand& served) {
  const std::string line = fmt::format("{} {} {}: {} bytes, {} ms\n", served.command,
                                       served.database.empty() ? "-" : served.database,
                                       served.outcome, served.bytes, served.time.count());
  std::fputs(line.c_str(),
             stderr);  // does not throw: a full disk must not cost a client its answer
}

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

}  // namespace

int main(int argc, char** argv) {
  qv::StandInOptions options;
  std::string compress;
  bool verbose = false;
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
  app.add_option(
         "--upload-limit", options.upload_limit,
         "The largest file that clients may send, in bytes (suffixes such as MB are allowed)")
      ->transform(CLI::AsSizeValue(false));
  app.add_option("--compress", compress, "Tell clients whether to request compressed answers")
      ->check(CLI::IsMember({"on", "off"}));
  app.add_flag("--verbose", verbose, "Print one line per request to standard error");
  CLI11_PARSE(app, argc, argv);
  if (!compress.empty()) options.compress = compress == "on";
  if (verbose) options.on_served = PrintServed;
  return Run(options);
}
