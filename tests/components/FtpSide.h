// A component, and the server that it is tested with.
#pragma once

#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "ComponentCall.h"
#include "qvnetcall/transfer/Extensions.h"
#include "qvnetcall/transfer/QvCoFtp.h"
#include "qvnetcall/transfer/ResultCodes.h"
#include "tests/support/ServerProcess.h"
#include "tests/support/TempFolder.h"

namespace qv::components {

// What the server reports in its log.
struct ServerLog {
  std::vector<std::string> cut;
  std::vector<std::string> commands;
  std::uint64_t sent = 0;
  std::uint64_t received = 0;
};

class FtpSide {
 public:
  static constexpr const char* kUser = "tester";
  static constexpr const char* kPassword = "pass; word";

  explicit FtpSide(const std::vector<std::string>& options = {})
      : server_(Command(options)), component_(QvCoFtpCreate()) {
    std::filesystem::create_directories(Here(""));
  }
  ~FtpSide() { component_->Release(); }
  FtpSide(const FtpSide&) = delete;
  FtpSide& operator=(const FtpSide&) = delete;

  [[nodiscard]] IQvCoFtp* Component() const { return component_; }
  [[nodiscard]] short Port() const { return static_cast<short>(server_.Port()); }
  // Returns the path of a file, in the folder of the server or beside it.
  [[nodiscard]] std::string There(const std::string& name) const { return In("server", name); }
  [[nodiscard]] std::string Here(const std::string& name) const { return In("client", name); }

  template <class... Parameters, class... Arguments>
  long Ask(HRESULT (IQvCoFtp::*call)(Parameters...), const Arguments&... arguments) const {
    return ResultOf(component_, call, arguments...);
  }
  long Login(const std::string& prefix = "", const char* password = kPassword) const {
    return Ask(&IQvCoFtp::FtpLogin, (prefix + "127.0.0.1").c_str(), Port(), kUser, password);
  }
  long LastResult() const { return Ask(&IQvCoFtp::GetLastResult); }
  long Upload(const std::string& first, const std::string& second, long option = 0) const {
    component_->AddUploadFile(first.c_str(), second.c_str());
    Ask(&IQvCoFtp::UploadFile, option);
    return LastResult();
  }
  long Download(const std::string& first, const std::string& second, long option = 0) const {
    component_->AddDownloadFile(first.c_str(), second.c_str());
    Ask(&IQvCoFtp::DownloadFile, 1L, option);
    return LastResult();
  }
  bool HasSucceeded(const std::string& first) const {
    return Ask(&IQvCoFtp::IsOperatorFileSuc, first.c_str()) == 1;
  }

  // Returns what was added to the log since the last call.
  ServerLog ReadLog() {
    ServerLog log;
    std::ifstream file(In("", "log"));
    file.seekg(log_read_);
    for (std::string line; std::getline(file, line); log_read_ = file.tellg()) {
      const std::string word = line.substr(0, line.find(' '));
      const std::string rest = line.substr(std::min(word.size() + 1, line.size()));
      if (word == "cut")
        log.cut.push_back(rest);
      else if (word == "sent")
        log.sent += std::stoull(rest);
      else if (word == "received")
        log.received += std::stoull(rest);
      else
        log.commands.push_back(line);
    }
    return log;
  }

 private:
  [[nodiscard]] std::string In(const char* folder, const std::string& name) const {
    return (folder_.Path() / folder / name).string();
  }
  std::vector<std::string> Command(const std::vector<std::string>& options) const {
    std::filesystem::create_directories(There(""));
    std::vector<std::string> words{QV_PYTHON, QV_FTP_SERVER, There(""), In("", "log")};
    words.insert(words.end(), options.begin(), options.end());
    return words;
  }

  TempFolder folder_;
  ServerProcess server_;
  IQvCoFtp* component_;
  std::streamoff log_read_ = 0;
};

struct LoggedInFtpSide : FtpSide {
  explicit LoggedInFtpSide(const std::vector<std::string>& options = {}) : FtpSide(options) {
    EXPECT_EQ(Login(), 0);
  }
};

// Returns the bytes of all files in the folder, by their paths below it.
inline std::map<std::string, std::string> FilesIn(const std::string& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    files[entry.path().lexically_relative(folder).string()] = BytesOf(entry.path().string());
  }
  return files;
}

}  // namespace qv::components
