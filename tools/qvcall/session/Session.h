#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

#include "tools/qvcall/options/CommandLine.h"
#include "tools/qvcall/output/ReturnCodes.h"

namespace qv::tool {

// Starts the library for one command and stops it on destruction. Only one may exist at a time.
class Session {
 public:
  // The transport of a command's calls.
  enum class Calls {
    kByServerType,  // that of the server's kind, or none in direct mode
    kOverSocket,    // the socket transport, regardless of the server's kind
  };

  // `connection` must outlive the session. In direct mode, the database gets the name `database`.
  Session(const ConnectionOptions& connection, std::string database,
          Calls calls = Calls::kByServerType);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // Passes the token, the authorities and the deadlines to the transport that is used, or opens the
  // database in direct mode. With port 0 no server is configured, and every call fails immediately.
  // Returns false, with the reason on `err`, if one of them is rejected: going on without it would
  // not be what the user asked for.
  [[nodiscard]] bool Start(std::ostream& err);

  // Returns why this thread's last call failed, without what the connection text hides.
  [[nodiscard]] Reason LastReason() const;
  // Tells on `err` why this thread's last call failed with that result. `subject` names the file,
  // folder or statement if there are several.
  void PrintFailure(Call call, int code, std::ostream& err, std::string_view subject = {}) const;
  // The same for a call that returns 0 both if the server refused it and if it was not reached.
  void PrintRefusal(Call call, std::string_view subject, std::ostream& err) const;
  // Whether the last call failed because it did not reach the server.
  [[nodiscard]] bool IsUnreachable() const;

  // Returns the transport of the calls. Valid after Start().
  [[nodiscard]] Route Way() const { return route_; }
  // Returns the server in the form that users write.
  [[nodiscard]] std::string Address() const;
  // Return the name and the port by which the library knows the server.
  [[nodiscard]] const std::string& Server() const { return server_; }
  [[nodiscard]] int Port() const { return port_; }
  // Returns the name that calls use for the database.
  [[nodiscard]] const char* Database() const { return database_.c_str(); }

  // Checks over the socket whether the server answers. Also updates the transport's view of the
  // network's state.
  [[nodiscard]] bool Probe() const;

 private:
  [[nodiscard]] bool FindRoute(std::ostream& err);
  [[nodiscard]] bool OpenDirect(std::ostream& err);

  const ConnectionOptions& connection_;
  const Calls calls_;
  std::string database_;
  std::string server_;
  int port_ = 0;
  Route route_ = Route::kSocket;
};

}  // namespace qv::tool
