// A PostgreSQL server for the tests, on an empty folder and a free loopback port.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

#include "TempFolder.h"

namespace qv {

class PostgresServer {
 public:
  // Returns the server of this program, which the first call starts and the end of the program
  // stops.
  static const PostgresServer& Shared();

  // Runs as the user "postgres" if this program is root, which PostgreSQL refuses. If the server
  // does not start, the test fails with the reason.
  PostgresServer();
  ~PostgresServer();
  PostgresServer(const PostgresServer&) = delete;
  PostgresServer& operator=(const PostgresServer&) = delete;

  static constexpr const char* kPassword = "pass; word";

  // Returns a connection text for the ODBC driver of that name, as the owner of everything.
  [[nodiscard]] std::string ConnectionText(const std::string& driver = "PostgreSQL Unicode") const;
  // Runs SQL, or with -f files of it, by the server's own client. Returns false if any of it fails.
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
