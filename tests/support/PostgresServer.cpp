#include "tests/support/PostgresServer.h"

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <csignal>

extern char** environ;

namespace qv {

namespace {

constexpr const char* kUser = "postgres";
constexpr const char* kReady = "ready to accept connections";
constexpr int kStarts = 3;

// The newest version's; empty when there is none.
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

// Starts a program with `output` for what it prints; -1 when it cannot be started.
pid_t Spawn(std::vector<std::string> words, const std::string& folder, int output) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output, STDERR_FILENO);
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  pid_t pid = -1;
  if (posix_spawnp(&pid, arguments[0], &actions, nullptr, arguments.data(), environ) != 0) pid = -1;
  posix_spawn_file_actions_destroy(&actions);
  return pid;
}

// As the user that the server runs as, and not for longer than this program.
std::vector<std::string> AsServerUser(std::vector<std::string> command) {
  std::vector<std::string> words{"setpriv", "--pdeathsig", "INT"};
  if (geteuid() == 0) {
    for (const std::string option : {"--reuid=", "--regid="}) words.push_back(option + kUser);
    words.emplace_back("--init-groups");
  }
  words.insert(words.end(), command.begin(), command.end());
  return words;
}

// Runs a program to its end, and shows what it printed if that is a bad one.
bool RunToEnd(const std::vector<std::string>& words, const std::string& folder) {
  const std::string output = folder + "/output";
  const int file = open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  const pid_t pid = Spawn(words, folder, file);
  close(file);
  int status = -1;
  if (pid > 0) waitpid(pid, &status, 0);
  if (status != 0) ADD_FAILURE() << words.back() << ": " << BytesOf(output);
  return status == 0;
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
  // Somebody else may take the port between the question for it and the start.
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
  return RunToEnd(AsServerUser({programs_ + "initdb", "--username=tester", "--pwfile=password",
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
        "max_connections=20", "max_wal_senders=0", "logging_collector=off"}) {
    command.insert(command.end(), {"-c", setting});
  }
  int log[2];
  if (pipe2(log, O_CLOEXEC) != 0) return false;
  pid_ = Spawn(AsServerUser(command), folder_.Path().string(), log[1]);
  close(log[1]);
  log_.clear();
  has_ended_ = false;
  following_ = std::thread([this, end = log[0]] { Follow(end); });
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return has_ended_ || log_.find(kReady) != std::string::npos; });
  return !has_ended_;
}

// Until the last process of the server has closed its end.
void PostgresServer::Follow(int log) {
  char piece[4096];
  for (ssize_t length = 0; (length = read(log, piece, sizeof piece)) > 0;) {
    const std::lock_guard lock(mutex_);
    log_.append(piece, static_cast<std::size_t>(length));
    changed_.notify_all();
  }
  close(log);
  const std::lock_guard lock(mutex_);
  has_ended_ = true;
  changed_.notify_all();
}

void PostgresServer::Stop() {
  if (pid_ > 0) {
    kill(pid_, SIGINT);  // its fast way to stop
    waitpid(pid_, nullptr, 0);
    pid_ = -1;
  }
  if (following_.joinable()) following_.join();
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
  return RunToEnd(words, folder_.Path().string());
}

}  // namespace qv
