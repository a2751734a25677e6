#include "ModuleState.h"

#include "base/platform/Platform.h"
#include "resultset/Reading.h"
#include "resultset/readers/ReaderThreads.h"

namespace qv {

ModuleState::ModuleState() : direct_access(*new OdbcLocalDatabase(temp_files)) { Reset(); }

ModuleState& ModuleState::Get() {
  static ModuleState state;
  return state;
}

void ModuleState::Reset() {
  server_name.clear();
  server_port = 0;
  use_local_database = 0;
  care_open_connection = 1;
  direct_access.CloseAll();
  local_database = &direct_access;
  module_file = platform::ModuleFile();
  server_type.Clear();
  settings.need_update = 1;
  settings.server_set_cache = 0;
  settings.server_compress = 0;
  settings.default_select_compress = 0;
  settings.default_display_compress = 0;
  settings.default_display_domain = 0;
  cache.Reset();
  SetResultLimit(0);
  SetReaderThreads(0);
}

std::string ModuleFolder(std::size_t max_path) {
  return platform::FolderOf(ModuleState::Get().module_file.substr(0, max_path));
}

}  // namespace qv
