#include "QueueCommands.h"

#include <fmt/ostream.h>

#include <algorithm>
#include <utility>

#include "QueueClient.h"
#include "QueueProgress.h"
#include "qvnetcall/ResultCodes.h"
#include "qvnetcall/transfer/ComError.h"
#include "tools/qvcall/files/TransferReport.h"
#include "tools/qvcall/output/DisplayText.h"
#include "tools/qvcall/session/Session.h"
#include "tools/qvcall/system/LocalFiles.h"

namespace qv::tool {
namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

// Prints the lines of the log's report. After a file that succeeded, the report repeats the
// previous line; such repetitions are left out here.
void PrintFailInfo(std::string_view info, std::ostream& err) {
  std::string_view before;
  while (!info.empty()) {
    const std::string_view line = info.substr(0, info.find('\n'));
    info.remove_prefix(std::min(line.size() + 1, info.size()));
    if (line.empty() || line == before) continue;
    before = line;
    const std::size_t tabs = std::min(line.find_first_not_of('\t'), line.size());
    fmt::print(err, "{}{}\n", tabs == 0 ? "qvcall: " : "  ", Visible(line.substr(tabs)));
  }
}

// Runs one command at one host after the login.
class QueueWork {
 public:
  QueueWork(const QueueHost& host, const Session& session, QueueClient& client,
            QueueProgress& progress, std::ostream& err)
      : host_(host), client_(client), progress_(progress), report_(session, err), err_(err) {}

  int operator()(const QueuePut& command) {
    const std::vector<FileTransfer> files = PlanQueue(command, report_);
    Pairs pairs;
    std::uint64_t bytes = 0;
    for (const FileTransfer& file : files) {
      pairs.emplace_back(file.local, file.server);
      bytes += file.bytes;
    }
    return Transfer(Direction::kUpload, pairs, bytes);
  }

  int operator()(const QueueGet& command) {
    if (KindOf(command.local_folder) != LocalKind::kFolder) {
      fmt::print(err_, "qvcall: {} is not a folder\n", Visible(command.local_folder));
      return kFailed;
    }
    Pairs pairs;
    for (FileTransfer& file : PlanQueue(command, report_)) {
      pairs.emplace_back(std::move(file.server), std::move(file.local));
    }
    return Transfer(Direction::kDownload, pairs, std::nullopt);
  }

  int operator()(const QueueCopy& command) {
    const std::string target = QueueTarget(command.source, command.target);
    return Transfer(Direction::kCopy, {{command.source, target}}, std::nullopt);
  }

  int operator()(const QueueMove& command) {
    const std::string target = QueueTarget(command.source, command.target);
    return Succeeded(client_.Move(command.source, target), command.source) ? Finish() : kFailed;
  }

  int operator()(const QueueRemove& command) {
    bool is_done = true;
    for (const std::string& path : command.paths) {
      is_done &= Succeeded(
          command.recursive ? client_.RemoveFolder(path) : client_.RemoveFile(path), path);
    }
    return is_done ? Finish() : kFailed;
  }

  // Explains a failure on `err`. Returns true if the result is success.
  bool Succeeded(long result, std::string_view subject) {
    if (result == result::kSuccess) return true;
    const ReturnCode words = ExplainTransfer(host_.service, result);
    fmt::print(err_, "qvcall: {}: {} (result {})\n  {}\n", Visible(subject), words.meaning, result,
               words.advice);
    return false;
  }

 private:
  int Finish() {
    fmt::print(err_, "done\n");
    return kDone;
  }

  int Transfer(Direction direction, const Pairs& pairs, std::optional<std::uint64_t> bytes) {
    std::vector<std::string> names;
    for (const auto& [first, second] : pairs) {
      names.push_back(first);
      // A file that cannot be transferred is queued as well, and the run reports it.
      static_cast<void>(client_.Add(direction, first, second));
    }
    long count = 0;
    progress_.Begin(names, bytes);
    const long result =
        pairs.empty() ? result::kSuccess : client_.Run(direction, host_.retries, count);
    progress_.End();
    const auto moved = static_cast<std::size_t>(std::max(count, 0L));
    // The bytes sent of a file that failed do not tell how many the server stored.
    const bool is_whole = moved == pairs.size();
    if (moved > 0) report_.Done(is_whole ? progress_.MovedBytes() : std::nullopt, moved);
    const std::string subject = pairs.size() == 1 ? names.front()
                                                  : fmt::format("{} of {} failed, the first",
                                                                pairs.size() - moved, pairs.size());
    if (Succeeded(result, subject)) return report_.Finish();
    PrintFailInfo(client_.FailInfo(direction, count), err_);
    if (moved > 0 || report_.HasFailures()) static_cast<void>(report_.Finish());
    return kFailed;
  }

  const QueueHost& host_;
  QueueClient& client_;
  QueueProgress& progress_;
  TransferReport report_;
  std::ostream& err_;
};

// Sets the parameters of the component, which must happen before it is created. Returns the name of
// the first parameter that it rejected, or null.
const char* FirstRefused(const ConnectionOptions& connection, const QueueHost& host,
                         decltype(QvCoFtpSetParameter)* set) {
  std::vector<std::pair<const char*, std::string>> parameters;
  if (!connection.ca_file.empty()) parameters.emplace_back("ca_file", connection.ca_file);
  if (!host.region.empty()) parameters.emplace_back("region", host.region);
  if (connection.timeout_ms) {
    const std::string timeout = std::to_string(*connection.timeout_ms);
    parameters.emplace_back("connect_timeout_ms", timeout);
    parameters.emplace_back("io_timeout_ms", timeout);
  }
  for (const auto& [name, value] : parameters) {
    if (set == nullptr || set(name, value.c_str()) != 1) return name;
  }
  return nullptr;
}

// Sets the parameters of the component. Returns false, with the reason on `err`, if it rejects one:
// going on without it would not be what the user asked for.
bool IsPrepared(const ConnectionOptions& connection, const QueueHost& host,
                decltype(QvCoFtpSetParameter)* set, std::ostream& err) {
  const char* const refused = FirstRefused(connection, host, set);
  if (refused == nullptr) return true;
  // Without a component, the login fails and says so.
  if (set == nullptr && MakeQueueClient(host.service)->Logout() == result::kNoComponent)
    return true;
  fmt::print(err, "qvcall: the component does not accept this value of its parameter {}\n",
             refused);
  return false;
}

int Work(const QueueCommand& command, const std::string& password, QueueClient& client,
         QueueWork& work) {
  if (!work.Succeeded(client.Login(command.host, password), command.host.name)) return kFailed;
  return std::visit(work, command.work);
}

}  // namespace

int Run(const ConnectionOptions& connection, const QueueCommand& command, std::istream& in,
        std::ostream& err) {
  const auto password = PasswordFor(command.host, in, err);
  if (!password) return kFailed;
  Session session(connection, "", Session::Calls::kOverSocket);
  if (!session.Start(err)) return kFailed;
  const QueueExtensions extensions = ExtensionsOf(command.host.service);
  if (!IsPrepared(connection, command.host, extensions.set_parameter, err)) return kFailed;
  QueueProgress progress(err, extensions.set_progress);
  const auto client = MakeQueueClient(command.host.service);
  QueueWork work(command.host, session, *client, progress, err);
  try {
    return Work(command, *password, *client, work);
  } catch (const _com_error& error) {
    progress.End();
    fmt::print(err, "qvcall: {}: the component failed with 0x{:08X}\n", Visible(command.host.name),
               static_cast<unsigned>(error.Error()));
    return kFailed;
  }
}

}  // namespace qv::tool
