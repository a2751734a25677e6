// All process-wide state of the library, in one place that a test can reset.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "ServerType.h"
#include "cache/QueryCache.h"
#include "localdb/LocalDatabase.h"
#include "qvnetcall/TempFileInfo.h"

namespace qv {

// The server's settings as last loaded, and whether they must be loaded again.
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
  // Returns the state of this process.
  static ModuleState& Get();

  // Restores the state at load, except the folder of temporary files. No call may run meanwhile.
  void Reset();

  // Set-up writes these.
  std::string server_name;
  std::uint32_t server_port = 0;
  int use_local_database = 0;
  // If not zero, the host opens and closes local databases itself.
  int care_open_connection = 1;
  tagTEMPFILEINFO temp_files{};
  // Never destroyed: connections that a host leaves open end with the process, because the drivers
  // may be unloaded before static objects are destroyed.
  OdbcLocalDatabase& direct_access;
  // Direct access, unless a test replaces it. Never null, not owned.
  LocalDatabase* local_database = &direct_access;
  // The file that contains this code.
  std::string module_file;

  // Calls write these.
  ServerTypeMemo server_type;
  ServerSettings settings;
  QueryCache cache;

 private:
  ModuleState();
};

// Returns the folder of the module's file with a separator at its end. The file's path is first cut
// to `max_path` bytes.
[[nodiscard]] std::string ModuleFolder(std::size_t max_path = std::string::npos);

}  // namespace qv
