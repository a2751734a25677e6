#include "Setting.h"

#include <cstdlib>
#include <stdexcept>

namespace qv::bench {

namespace {

std::string Text(const char* name) {
  const char* const value = std::getenv(name);
  if (value != nullptr) return value;
  throw std::runtime_error(std::string(name) + " is not set; bench/calls/servers sets it");
}

int Number(const char* name) { return std::stoi(Text(name)); }

std::uint16_t Port(const char* name) { return static_cast<std::uint16_t>(Number(name)); }

}  // namespace

Setting Setting::FromEnvironment() {
  return {.port = Port("QV_BENCH_PORT"),
          .http_port = Port("QV_BENCH_HTTP_PORT"),
          .store_port = Port("QV_BENCH_STORE_PORT"),
          .store_root = Text("QV_BENCH_STORE_ROOT"),
          .web_port = Port("QV_BENCH_WEB_PORT"),
          .web_root = Text("QV_BENCH_WEB_ROOT"),
          .postgres_port = Port("PGPORT"),
          .postgres_odbc = Text("QV_BENCH_POSTGRES_ODBC"),
          .sqlite_odbc = Text("QV_BENCH_SQLITE_ODBC"),
          .sqlite_file = Text("QV_BENCH_SQLITE_FILE"),
          .disk_folder = Text("QV_BENCH_DISK_FOLDER"),
          .store_folder = Text("QV_BENCH_STORE_FOLDER"),
          .many_rows = Number("QV_BENCH_MANY_ROWS")};
}

}  // namespace qv::bench
