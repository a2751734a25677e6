#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

#include "tools/qvcall/options/CommandLine.h"
#include "tools/qvcall/output/ReturnCodes.h"

namespace qv::tool {

// The library, started for one command and stopped at the end; one at a time.
class Session {
 public:
  // What a command's calls go through.
  enum class Calls {
    kByServerType,  // the transport for the server's kind, or a database in direct mode
    kOverSocket,    // the socket transport, whatever the server's kind
  };

  // `connection` outlives the session. A database in direct mode is known as `database`.
  Session(const ConnectionOptions& connection, std::string database,
          Calls calls = Calls::kByServerType);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // A connection without a port is none: calls come to nothing at once.
  //
  // Hands the token, the authorities and the deadlines to the transport that is used, or opens the
  // database. False, with the reason on `err`, when one is not taken: going on without it would not
  // be what the user asked for.
  [[nodiscard]] bool Start(std::ostream& err);

  // Says on `err` what a call's result means, and in direct mode what the driver said. `subject` is
  // the one of several things that it is about.
  void PrintFailure(Call call, int code, std::ostream& err, std::string_view subject = {}) const;
  // The same for a call that only gives 0, whether the server refused it or was not reached.
  void PrintRefusal(Call call, std::string_view subject, std::ostream& err) const;
  // Whether that is so because the last attempt did not even reach the server.
  [[nodiscard]] bool IsUnreachable() const;

  // What the calls go through; valid once the session is started.
  [[nodiscard]] Route Way() const { return route_; }
  // The server as a user would write it.
  [[nodiscard]] std::string Address() const;
  // The name under which calls find the database.
  [[nodiscard]] const char* Database() const { return database_.c_str(); }

  // Asks over the socket whether the server is there; also teaches the transport the state of the
  // network.
  [[nodiscard]] bool Probe() const;

 private:
  [[nodiscard]] bool FindRoute(std::ostream& err);
  [[nodiscard]] bool OpenDirect(std::ostream& err);
  void PrintDriverText(std::ostream& err) const;

  const ConnectionOptions& connection_;
  const Calls calls_;
  std::string database_;
  std::string server_;
  int port_ = 0;
  Route route_ = Route::kSocket;
};

}  // namespace qv::tool
