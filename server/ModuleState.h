// Everything that the library keeps for the whole process, in one place that a test can reset.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "ServerType.h"
#include "cache/QueryCache.h"
#include "localdb/OdbcLocalDatabase.h"
#include "qvnetcall/TempFileInfo.h"

namespace qv {

// The server's settings, as calls load and read them, and whether they are due.
struct ServerSettings {
  std::atomic<int> need_update = 1;
  std::atomic<int> server_set_cache = 0;
  std::atomic<int> server_compress = 0;
  std::atomic<int> default_select_compress = 0;
  std::atomic<int> default_display_compress = 0;
  std::atomic<int> default_display_domain = 0;
};

// Set-up runs alone, so what it writes is plain. What calls write may be read and written by any
// thread.
struct ModuleState {
  // The process's state.
  static ModuleState& Get();

  // Back to how it is at load, the folder of temporary files apart; while no call runs.
  void Reset();

  // Set-up writes these.
  std::string server_name;
  std::uint32_t server_port = 0;
  int use_local_database = 0;
  // Non-zero leaves opening and closing local databases to the host.
  int care_open_connection = 1;
  tagTEMPFILEINFO temp_files{};
  // Never goes away: the connections that a host leaves open end with the process, since at its end
  // the drivers may be gone already.
  OdbcLocalDatabase& direct_access;
  // Direct access, unless a test has its own. Not null, not owned.
  LocalDatabase* local_database = &direct_access;
  // The file that this code was loaded from.
  std::string module_file;

  // Calls write these.
  ServerTypeMemo server_type;
  ServerSettings settings;
  QueryCache cache;

 private:
  ModuleState();
};

// The folder of the module's file with its separator, the file's path cut to `max_path` bytes
// before.
[[nodiscard]] std::string ModuleFolder(std::size_t max_path = std::string::npos);

}  // namespace qv
