#include "Password.h"

#include <fmt/ostream.h>

#include <fstream>
#include <istream>

#include "tools/qvcall/output/DisplayWidth.h"
#include "tools/qvcall/system/Terminal.h"

namespace qv::tool {
namespace {

// A file that was named by mistake shall not be taken into memory.
constexpr std::size_t kLongestPassword = 4096;

std::optional<std::string> FirstLine(std::istream& in) {
  std::string line;
  for (char ch = 0; in.get(ch) && ch != '\n';) {
    line += ch;
    if (line.size() > kLongestPassword) return std::nullopt;
  }
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line.empty() ? std::nullopt : std::optional(line);
}

std::optional<std::string> Asked(const QueueHost& host, std::ostream& err) {
  const bool is_key = host.service == Service::kCloud;
  auto password = AskForSecret(fmt::format("{} of {} at {}: ", is_key ? "Secret key" : "Password",
                                           Visible(host.login), Visible(host.name)));
  if (!password) {
    fmt::print(err,
               "qvcall: there is no terminal to ask for the password on; name a file that has "
               "it with --password-file\n");
  }
  return password;
}

}  // namespace

std::optional<std::string> PasswordFor(const QueueHost& host, std::istream& in, std::ostream& err) {
  if (host.login.empty()) return "";
  if (host.password_file.empty()) return Asked(host, err);
  std::ifstream file;
  const bool is_input = host.password_file == "-";
  if (!is_input) file.open(host.password_file);
  auto password = FirstLine(is_input ? in : file);
  if (!password) {
    fmt::print(err, "qvcall: {}: has no password in its first line, or cannot be read\n",
               is_input ? "standard input" : Visible(host.password_file));
  }
  return password;
}

}  // namespace qv::tool
