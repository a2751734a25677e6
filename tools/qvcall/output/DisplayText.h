// Text as a terminal shows it: how many cells it takes, what replaces bytes that the terminal
// cannot show or would obey, and columns.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

namespace qv::tool {

// Appends `text` to `line` in a form that is safe to show and returns the cells that it takes.
// Control characters and those that change the direction of writing are spelt out ("\n", "\x1b",
// "\u009b", "\u202e"). An invalid byte becomes U+FFFD, or "?" if the system's encoding lacks that
// character.
std::size_t AppendVisible(std::string_view text, std::string& line);

// Returns `text` in that form.
[[nodiscard]] std::string Visible(std::string_view text);

// Appends `text` to `line` with the control characters of ASCII and Latin-1, other than tabs and
// line breaks, spelt out in the same way. Other bytes stay as they are.
void AppendPrintable(std::string_view text, std::string& line);

// Returns as much of `text`, in that form, as fits into `cells`, which is at least 3. A text that
// was cut ends with "...".
[[nodiscard]] std::string VisibleStart(std::string_view text, std::size_t cells);

// Passes what is written to it on to `out`, which must outlive it, in a form that is safe to show
// (AppendVisible), with its line breaks. Every write must end between two characters.
class VisibleOutput : std::streambuf, public std::ostream {
 public:
  explicit VisibleOutput(std::ostream& out) : std::ostream(this), out_(out) {}

 private:
  std::streamsize xsputn(const char* text, std::streamsize length) override;
  std::streambuf::int_type overflow(std::streambuf::int_type character) override;

  std::ostream& out_;
};

// Writes a line for each row. The columns are aligned by display width and two blanks apart;
// characters that a terminal would obey are spelt out.
void WriteColumns(const std::vector<std::vector<std::string>>& rows, std::ostream& out);

// Returns a time, given in seconds since 1970 UTC, as local date and time. The text always has the
// same length; it is a padded "?" if the year would not have four digits.
[[nodiscard]] std::string TimeText(std::int64_t seconds);

}  // namespace qv::tool
