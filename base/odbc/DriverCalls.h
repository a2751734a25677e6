// The calls of the driver manager that take or give text, for drivers of either kind.
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

// Drivers that know only narrow text get and give it in the code page, through the narrow calls:
// the driver manager's own conversion would follow the locale, or drop the high halves.
enum class Encoding { kWide, kNarrow };

// Text on its way to a driver, in its encoding.
class DriverText {
 public:
  // Nothing when it is no text of the code page, has a NUL in it, or is too long; `diagnostics`
  // say so.
  [[nodiscard]] static std::optional<DriverText> From(std::string_view text, Encoding encoding,
                                                      Diagnostics& diagnostics);

  // For a text of at most 32767 bytes.
  [[nodiscard]] SQLRETURN Connect(SQLHDBC connection);
  [[nodiscard]] SQLRETURN Execute(SQLHSTMT statement);
  // Binds the text, which has to stay where it is while the statement runs.
  [[nodiscard]] SQLRETURN Bind(SQLHSTMT statement, SQLUSMALLINT number);

  // The same for a null.
  [[nodiscard]] static SQLRETURN BindNull(SQLHSTMT statement, SQLUSMALLINT number);

 private:
  Encoding encoding_ = Encoding::kWide;
  std::u16string wide_;
  std::string narrow_;
  SQLLEN bytes_ = 0;  // while it is bound
};

// What SQLDescribeCol tells.
struct ColumnFacts {
  std::string name;
  SQLSMALLINT type = 0;
  SQLULEN size = 0;
  SQLSMALLINT decimals = 0;
};

// Nothing when the call failed. A name ends at its first NUL, and where 32767 units end.
[[nodiscard]] std::optional<ColumnFacts> DescribeColumn(SQLHSTMT statement, SQLUSMALLINT number,
                                                        Encoding encoding);

// Whether the driver behind a connection keeps wide text whole.
[[nodiscard]] Encoding EncodingOf(SQLHDBC connection);

// Adds what there is to say about the last call on `handle`, which is always something.
void Collect(SQLSMALLINT handle_type, SQLHANDLE handle, Encoding encoding,
             Diagnostics& diagnostics);

}  // namespace qv::odbc
