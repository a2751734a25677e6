// ODBC connection texts: "Driver={Some Driver};Server=files.example;Pwd={a;b}".
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qv::text {

// Returns the length of the value that `rest` begins with, as it is written. It ends before the
// next ";"; a value in braces may hold ";" itself, and "}" if it is doubled.
[[nodiscard]] std::size_t ConnectionValueLength(std::string_view rest);

// Returns whether values of this key are secret: a key that holds "pwd", "pass", "secret" or
// "token", in whatever case.
[[nodiscard]] bool IsSecretKey(std::string_view key);

class ConnectionText {
 public:
  struct Setting {
    std::string key;      // as it is written, without the blanks around it
    std::string value;    // without braces and the blanks around it
    std::string written;  // the value as it is written
  };

  explicit ConnectionText(std::string_view text);

  [[nodiscard]] const std::string& Text() const { return text_; }
  // In the order of the text.
  [[nodiscard]] const std::vector<Setting>& Settings() const { return settings_; }

  // Returns the value of the first setting with this key, ignoring case, or null. It belongs to
  // this object.
  [[nodiscard]] const std::string* ValueOf(std::string_view key) const;

  enum class Hide {
    kSecrets,    // the text as a whole, and the values of secret keys
    kAllValues,  // every other value as well: hosts, users, databases
  };
  // Returns what a driver said with "***" wherever it repeats what is to be hidden. Values that are
  // not secret are hidden from four bytes on: shorter ones occur in ordinary sentences and reveal
  // nothing. Secrets are always hidden, but those below three bytes only where they are whole
  // words: masking them inside words would reveal them.
  [[nodiscard]] std::string WithoutSecrets(std::string said, Hide hide) const;

 private:
  void Split();

  std::string text_;
  std::vector<Setting> settings_;
};

}  // namespace qv::text
