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
  std::fputs(line.c_str(), stderr);  // does not throw, so a full disk costs no client its answer
}

int Run(const qv::StandInOptions& options) {
  // However many wide rows clients ask for at once; a query that needs more fails.
  sqlite3_hard_heap_limit64(kMostDatabaseMemory);
  boost::asio::io_context context;
  // Before the first line, so that whoever waits for it can stop the server.
  boost::asio::signal_set signals(context, SIGINT, SIGTERM);
  // A second signal finds nobody here, and ends the process if stopping should take too long.
  signals.async_wait([&signals](const auto&, int) {
    boost::system::error_code ignored;
    signals.clear(ignored);
  });
  qv::platform::SurviveFileLimits();  // a file that may not grow is that request's failure only

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
  CLI::App app("The stand-in server: answers the platform's commands on SQLite files in a folder");
  app.allow_windows_style_options(false);
  app.add_option("--data", options.data_folder, "The folder of its data; made when missing")
      ->required();
  app.add_option("--listen", options.listen, "The address to listen on")->capture_default_str();
  app.add_option("--port", options.port, "The port; 0 takes a free one")->capture_default_str();
  app.add_option("--http-port", options.http_port, "A port for HTTP as well; 0 takes a free one");
  app.add_option("--token", options.token, "What every request must carry");
  app.add_option("--upload-limit", options.upload_limit, "The longest file that clients may send")
      ->transform(CLI::AsSizeValue(false));
  app.add_option("--compress", compress, "Whether clients are told to ask for packed answers")
      ->check(CLI::IsMember({"on", "off"}));
  app.add_flag("--verbose", verbose, "Print a line for each request to standard error");
  CLI11_PARSE(app, argc, argv);
  if (!compress.empty()) options.compress = compress == "on";
  if (verbose) options.on_served = PrintServed;
  return Run(options);
}
