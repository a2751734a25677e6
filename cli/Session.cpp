#include "Session.h"

#include <fmt/ostream.h>

#include <string>
#include <utility>
#include <vector>

#include "qvnetcall/RvoServer.h"

namespace qv {

Session::Session(const Connection& connection) : connection_(connection) {
  CRvoServer::InitNet();
  CRvoServer::SetConinfo(connection.server.c_str(), connection.port);
}

Session::~Session() { CRvoServer::FinitNet(); }

bool Session::Configure(std::ostream& err) const {
  std::vector<std::pair<const char*, std::string>> parameters;
  if (!connection_.token.empty()) parameters.emplace_back("token", connection_.token);
  if (connection_.timeout_ms) {
    const std::string timeout = std::to_string(*connection_.timeout_ms);
    parameters.emplace_back("connect_timeout_ms", timeout);
    parameters.emplace_back("io_timeout_ms", timeout);
  }
  for (const auto& [name, value] : parameters) {
    if (CRvoServer::SetNetClientPara(name, value.c_str()) != 1) {
      fmt::print(err, "qvcall: the transport does not take this value of its parameter {}\n", name);
      return false;
    }
  }
  return true;
}

bool Session::Probe() const {
  return CRvoServer::CheckServerLink(connection_.server.c_str(),
                                     static_cast<unsigned long>(connection_.port)) == 1;
}

}  // namespace qv
