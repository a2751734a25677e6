// Where the servers are that are measured, as the script bench/calls/servers says.
#pragma once

#include <cstdint>
#include <string>

namespace qv::bench {

struct Setting {
  // Reads the environment. Throws std::runtime_error if something is missing.
  static Setting FromEnvironment();

  // The stand-in server with the databases.
  std::uint16_t port;
  std::uint16_t http_port;
  // The stand-in server with the files, and its folder of them.
  std::uint16_t store_port;
  std::string store_root;
  // The web server, and its folder.
  std::uint16_t web_port;
  std::string web_root;
  // Programs and libraries of PostgreSQL take the rest from the environment.
  std::uint16_t postgres_port;
  std::string postgres_odbc;  // connection texts
  std::string sqlite_odbc;
  std::string sqlite_file;
  // Folders for the measured program's own files: on a disk, and where files are cheapest.
  std::string disk_folder;
  std::string store_folder;
  int many_rows;  // in the table of that name
};

// The logical databases of the stand-in server, and the names of the local ones.
inline constexpr const char* kSqlite = "BENCHLITE";
inline constexpr const char* kPostgres = "BENCHPG";

}  // namespace qv::bench
