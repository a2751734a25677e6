#include "PostgresServer.h"

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <csignal>
#include <utility>

#include "ServerProcess.h"

namespace qv {

namespace {

constexpr const char* kUser = "postgres";
constexpr const char* kReady = "ready to accept connections";
constexpr int kStarts = 3;

// Returns the folder of the newest version, or an empty text if there is none.
std::string ProgramFolder() {
  std::vector<std::string> found;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator("/usr/lib/postgresql", error)) {
    const auto programs = entry.path() / "bin" / "";
    if (std::filesystem::exists(programs / "postgres")) found.push_back(programs.string());
  }
  return found.empty() ? std::string() : *std::ranges::max_element(found);
}

std::uint16_t FreePort() {
  using boost::asio::ip::tcp;
  boost::asio::io_context context;
  return tcp::acceptor(context, {boost::asio::ip::address_v4::loopback(), 0})
      .local_endpoint()
      .port();
}

// Runs as the server's user, and ends with this program at the latest.
std::vector<std::string> AsServerUser(std::vector<std::string> command) {
  std::vector<std::string> words{"setpriv", "--pdeathsig", "INT"};
  if (geteuid() == 0) {
    for (const std::string option : {"--reuid=", "--regid="}) words.push_back(option + kUser);
    words.emplace_back("--init-groups");
  }
  words.insert(words.end(), command.begin(), command.end());
  return words;
}

// Runs a program to its end. The test fails with its output if it failed.
bool Succeeds(const std::vector<std::string>& words, const std::string& folder) {
  const Ended ended = RunToEnd(words, folder);
  if (ended.status != 0) ADD_FAILURE() << words.back() << ": " << ended.output;
  return ended.status == 0;
}

}  // namespace

const PostgresServer& PostgresServer::Shared() {
  static const PostgresServer server;
  return server;
}

PostgresServer::PostgresServer() : programs_(ProgramFolder()) {
  if (programs_.empty()) {
    ADD_FAILURE() << "PostgreSQL is not installed";
    return;
  }
  if (!MakeCluster()) return;
  // Another program may take the port between the query for it and the start.
  for (int start = 0; start < kStarts; ++start) {
    if (Start()) return;
    Stop();
  }
  ADD_FAILURE() << "PostgreSQL does not start: " << log_;
}

PostgresServer::~PostgresServer() { Stop(); }

bool PostgresServer::MakeCluster() {
  const std::string folder = folder_.Path().string();
  const std::string password = folder_.Write("password", kPassword);
  const passwd* const user = geteuid() == 0 ? getpwnam(kUser) : nullptr;
  if (user != nullptr) {
    for (const std::string& path : {folder, password}) {
      if (chown(path.c_str(), user->pw_uid, user->pw_gid) != 0) return false;
    }
  }
  return Succeeds(AsServerUser({programs_ + "initdb", "--username=tester", "--pwfile=password",
                                "--auth=scram-sha-256", "--encoding=UTF8", "--locale=C.UTF-8",
                                "--no-sync", "data"}),
                  folder);
}

bool PostgresServer::Start() {
  port_ = FreePort();
  std::vector<std::string> command{programs_ + "postgres", "-D", "data", "-p",
                                   std::to_string(port_)};
  for (const char* const setting :
       {"listen_addresses=127.0.0.1", "unix_socket_directories=", "fsync=off",
        "synchronous_commit=off", "full_page_writes=off", "autovacuum=off", "shared_buffers=16MB",
        "max_connections=20", "max_wal_senders=0", "logging_collector=off", "log_checkpoints=off",
        // Nothing reads the pipe later, so it must have room for all output.
        "log_min_messages=log"}) {
    command.insert(command.end(), {"-c", setting});
  }
  int log[2];
  if (pipe2(log, O_CLOEXEC) != 0) return false;
  pid_ = Spawn(AsServerUser(command), log[1], true, folder_.Path().string());
  close(log[1]);
  log_end_ = log[0];
  char piece[4096];
  for (log_.clear(); log_.find(kReady) == std::string::npos;) {
    const ssize_t length = read(log_end_, piece, sizeof piece);
    if (length <= 0) return false;
    log_.append(piece, static_cast<std::size_t>(length));
  }
  return true;
}

void PostgresServer::Stop() {
  if (pid_ > 0) {
    kill(pid_, SIGINT);  // the server's fast shutdown
    waitpid(pid_, nullptr, 0);
    pid_ = -1;
  }
  if (log_end_ >= 0) close(std::exchange(log_end_, -1));
}

std::string PostgresServer::ConnectionText(const std::string& driver) const {
  return "Driver={" + driver + "};Server=127.0.0.1;Port=" + std::to_string(port_) +
         ";Database=postgres;Uid=tester;Pwd={" + kPassword + "}";
}

bool PostgresServer::Run(std::vector<std::string> psql_arguments) const {
  std::vector<std::string> words{"env",
                                 std::string("PGPASSWORD=") + kPassword,
                                 programs_ + "psql",
                                 "--host=127.0.0.1",
                                 "--port=" + std::to_string(port_),
                                 "--username=tester",
                                 "--dbname=postgres",
                                 "--no-psqlrc",
                                 "--quiet",
                                 "--set=ON_ERROR_STOP=1"};
  words.insert(words.end(), psql_arguments.begin(), psql_arguments.end());
  return Succeeds(words, folder_.Path().string());
}

}  // namespace qv
