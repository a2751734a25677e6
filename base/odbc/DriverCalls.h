// The driver manager's calls that take or return text, for both kinds of drivers.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Diagnostics.h"
#include "OdbcHeaders.h"

namespace qv::odbc {

static_assert(sizeof(SQLWCHAR) == sizeof(char16_t));

inline SQLWCHAR* ToDriver(char16_t* text) { return reinterpret_cast<SQLWCHAR*>(text); }
inline SQLCHAR* ToDriver(char* text) { return reinterpret_cast<SQLCHAR*>(text); }

// Drivers that know only narrow text exchange it in the code page, through the narrow calls: the
// driver manager's own conversion would follow the locale, or drop the high halves.
enum class Encoding { kWide, kNarrow };

// Text for a driver, in the driver's encoding.
class DriverText {
 public:
  // Returns nothing and adds to `diagnostics` if the text is not valid in the code page, contains a
  // NUL, or is too long.
  [[nodiscard]] static std::optional<DriverText> From(std::string_view text, Encoding encoding,
                                                      Diagnostics& diagnostics);

  // For a text of at most 32767 bytes.
  [[nodiscard]] SQLRETURN Connect(SQLHDBC connection);
  [[nodiscard]] SQLRETURN Execute(SQLHSTMT statement);
  // Binds the text, which must not move while the statement runs.
  [[nodiscard]] SQLRETURN Bind(SQLHSTMT statement, SQLUSMALLINT number);

  // The same for a null.
  [[nodiscard]] static SQLRETURN BindNull(SQLHSTMT statement, SQLUSMALLINT number);

 private:
  Encoding encoding_ = Encoding::kWide;
  std::u16string wide_;
  std::string narrow_;
  SQLLEN bytes_ = 0;  // while it is bound
};

// What SQLDescribeCol reports.
struct ColumnFacts {
  std::string name;
  SQLSMALLINT type = 0;
  SQLULEN size = 0;
  SQLSMALLINT decimals = 0;
};

// Returns nothing if the call failed. A name ends at its first NUL and is cut to 32767 units.
[[nodiscard]] std::optional<ColumnFacts> DescribeColumn(SQLHSTMT statement, SQLUSMALLINT number,
                                                        Encoding encoding);

// Returns kWide if the driver of a connection preserves wide text, else kNarrow.
[[nodiscard]] Encoding EncodingOf(SQLHDBC connection);

// Adds the diagnostics of the last call on `handle`, at least one.
void Collect(SQLSMALLINT handle_type, SQLHANDLE handle, Encoding encoding,
             Diagnostics& diagnostics);

}  // namespace qv::odbc
