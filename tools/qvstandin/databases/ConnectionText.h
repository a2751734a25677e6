// What the server connects to a database with.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qv::standin {

// "Driver={Some Driver};Server=...;Pwd=..." as ODBC knows it.
class ConnectionText {
 public:
  explicit ConnectionText(std::string text);

  enum class Rows {
    kInPieces,  // so that no answer stands in memory whole
    kAtOnce,
  };
  // The text, and behind it what the server needs of the drivers that it knows, where the text says
  // nothing about it.
  [[nodiscard]] std::string Whole(Rows rows) const;

  // What a driver said, without what it repeats of the text: hosts, users, passwords.
  [[nodiscard]] std::string Blotted(std::string said) const;

 private:
  void Split();
  [[nodiscard]] bool IsPostgres() const;
  [[nodiscard]] const std::string* ValueOf(std::string_view key) const;

  std::string text_;
  std::vector<std::pair<std::string, std::string>> values_;  // keys in lower case
};

}  // namespace qv::standin
