// A database server of the tests' own: PostgreSQL on an empty folder and a free port of loopback.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

#include "TempFolder.h"

namespace qv {

class PostgresServer {
 public:
  // The one of this program, which the first call starts and the program's end stops.
  static const PostgresServer& Shared();

  // Runs as the user "postgres" when the program is root's, whom it would refuse. A server that
  // does not start says why as a failure of the test.
  PostgresServer();
  ~PostgresServer();
  PostgresServer(const PostgresServer&) = delete;
  PostgresServer& operator=(const PostgresServer&) = delete;

  static constexpr const char* kPassword = "pass; word";

  // For ODBC: as the owner of everything, with the driver of that name.
  [[nodiscard]] std::string ConnectionText(const std::string& driver = "PostgreSQL Unicode") const;
  // Runs SQL, or with -f files of it, by the server's own client; false when any of it fails.
  [[nodiscard]] bool Run(std::vector<std::string> psql_arguments) const;

 private:
  [[nodiscard]] bool MakeCluster();
  [[nodiscard]] bool Start();
  void Stop();

  const TempFolder folder_;
  std::string programs_;
  std::uint16_t port_ = 0;
  pid_t pid_ = -1;
  int log_end_ = -1;
  std::string log_;
};

}  // namespace qv
