// The library as a host uses it. Everything here throws std::runtime_error with the library's
// reason if a call fails.
#pragma once

#include <cstdint>
#include <string>

#include "Setting.h"

namespace qv::bench {

enum class Way { kSocket, kWeb, kDirect };

// Starts the library, and stops it.
class Host {
 public:
  explicit Host(const Setting& setting);
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  // Decides the way of the calls that follow, on all threads. No call may run meanwhile.
  void Use(Way way) const;
  // The same for a server of calls over sockets.
  static void UsePort(std::uint16_t port);

 private:
  const Setting& setting_;
};

enum class Cache { kNo, kYes };

// Run a query and a procedure call, which must give that many rows.
void Select(const char* database, const std::string& sql, int rows, Cache cache = Cache::kNo);
// Runs a query `calls` times, which must give that many rows each, without waiting in between.
void SelectMany(const char* database, const std::string& sql, int rows, int calls);
void CallProcedure(const char* database, const std::string& sql, int rows);
void Execute(const char* database, const std::string& sql);

void Upload(const std::string& local_file, const std::string& server_file);
void Download(const std::string& local_file, const std::string& server_file);

// Throws the reason of the last call unless it succeeded.
void CheckResult(const char* call, bool succeeded);

}  // namespace qv::bench
