// A fixture with an S3 server that checks its requests.
#pragma once

#include <gmock/gmock.h>

#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/ServerProcess.h"
#include "tests/support/TempFolder.h"

namespace qv::components {

class S3ServerTest : public testing::Test {
 protected:
  static constexpr const char* kAccess = "AN-ACCESS-KEY";
  static constexpr const char* kSecret = "a+secret/key";

  // `faults` as the server takes them.
  void Serve(const std::vector<std::string>& faults = {}) {
    std::vector<std::string> command = {QV_PYTHON, QV_S3_SERVER, kAccess, kSecret, Local("log")};
    command.insert(command.end(), faults.begin(), faults.end());
    server_.emplace(command);
    ASSERT_NE(server_->Port(), 0) << "the server did not start";
  }

  [[nodiscard]] std::uint16_t Port() const { return server_->Port(); }
  [[nodiscard]] std::string Local(const std::string& name) const {
    return (folder_.Path() / name).string();
  }
  // Returns the lines of the server's log that `pattern` matches.
  [[nodiscard]] std::vector<std::string> Requests(const std::string& pattern) const {
    std::istringstream log(BytesOf(Local("log")));
    std::vector<std::string> found;
    const auto is_wanted = testing::Matches(testing::ContainsRegex(pattern));
    for (std::string line; std::getline(log, line);) {
      if (is_wanted(line)) found.push_back(line);
    }
    return found;
  }
  // Returns bytes without a pattern, so that a shift is noticed.
  [[nodiscard]] static std::string Bytes(std::size_t count, std::uint32_t seed = 1) {
    std::string bytes(count, '\0');
    for (char& byte : bytes) {
      seed = seed * 1664525U + 1013904223U;
      byte = static_cast<char>(seed >> 24);
    }
    return bytes;
  }

  const TempFolder folder_;
  std::optional<ServerProcess> server_;
};

}  // namespace qv::components
