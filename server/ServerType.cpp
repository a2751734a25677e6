#include "ServerType.h"

#include "ModuleState.h"
#include "qvnetcall/ResultCodes.h"
#include "qvnetcall/RvoServer.h"

namespace qv {

std::optional<std::string> ServerTypeMemo::Find(std::string_view server, unsigned long port) const {
  const std::lock_guard lock(mutex_);
  if (!entry_ || entry_->server != server || entry_->port != port) return std::nullopt;
  return entry_->type;
}

void ServerTypeMemo::Remember(std::string_view server, unsigned long port, std::string_view type) {
  const std::lock_guard lock(mutex_);
  entry_ = Entry{std::string(server), port, std::string(type)};
}

void ServerTypeMemo::Clear() {
  const std::lock_guard lock(mutex_);
  entry_.reset();
}

bool IsWebServer() {
  const ModuleState& state = ModuleState::Get();
  CString type;
  CRvoServer::GetServerType(type, CString(std::string_view(state.server_name)), state.server_port);
  return type.CompareNoCase(server_type::kWeb) == 0;
}

}  // namespace qv
