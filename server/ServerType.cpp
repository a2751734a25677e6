#include "ServerType.h"

#include "ModuleState.h"
#include "qvnetcall/ResultCodes.h"
#include "qvnetcall/RvoServer.h"

namespace qv {

bool IsWebServer() {
  const ModuleState& state = ModuleState::Get();
  CString type;
  CRvoServer::GetServerType(type, CString(std::string_view(state.server_name)), state.server_port);
  return type.CompareNoCase(server_type::kWeb) == 0;
}

}  // namespace qv
