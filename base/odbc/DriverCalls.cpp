#include "DriverCalls.h"

#include <algorithm>
#include <array>
#include <limits>
#include <type_traits>

#include "base/platform/Platform.h"

namespace qv::odbc {

namespace {

// Reads text of `length` units from `buffer`; a driver may have written fewer than it reports.
template <class Unit>
std::string TextIn(const std::basic_string<Unit>& buffer, SQLSMALLINT length) {
  const auto said = static_cast<std::size_t>(std::max<SQLSMALLINT>(length, 0));
  const std::size_t held = std::min(said, buffer.size() - 1);
  const std::basic_string_view<Unit> whole(buffer.data(), held);
  const auto text = whole.substr(0, whole.find(Unit{}));
  if constexpr (std::is_same_v<Unit, char16_t>) {
    return platform::NarrowFromWide(text);
  } else {
    return std::string(text);
  }
}

SQLRETURN Describe(SQLHSTMT statement, SQLUSMALLINT number, std::u16string& name,
                   SQLSMALLINT& length, ColumnFacts& facts) {
  SQLSMALLINT nullable = 0;
  return SQLDescribeColW(statement, number, ToDriver(name.data()),
                         static_cast<SQLSMALLINT>(name.size()), &length, &facts.type, &facts.size,
                         &facts.decimals, &nullable);
}

SQLRETURN Describe(SQLHSTMT statement, SQLUSMALLINT number, std::string& name, SQLSMALLINT& length,
                   ColumnFacts& facts) {
  SQLSMALLINT nullable = 0;
  return SQLDescribeCol(statement, number, ToDriver(name.data()),
                        static_cast<SQLSMALLINT>(name.size()), &length, &facts.type, &facts.size,
                        &facts.decimals, &nullable);
}

template <class Unit>
std::optional<ColumnFacts> DescribeAs(SQLHSTMT statement, SQLUSMALLINT number) {
  constexpr std::size_t kUsualName = 256;
  constexpr std::size_t kLongestName = std::numeric_limits<SQLSMALLINT>::max();
  for (const std::size_t room : {kUsualName, kLongestName}) {
    std::basic_string<Unit> name(room, Unit{});
    SQLSMALLINT length = 0;
    ColumnFacts facts;
    if (!SQL_SUCCEEDED(Describe(statement, number, name, length, facts))) return std::nullopt;
    const bool whole = length >= 0 && static_cast<std::size_t>(length) < room;
    if (!whole && room != kLongestName) continue;
    facts.name = TextIn(name, length);
    return facts;
  }
  return std::nullopt;
}

SQLRETURN ReadRecord(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT number, std::u16string& state,
                     std::u16string& text, SQLINTEGER& native, SQLSMALLINT& length) {
  return SQLGetDiagRecW(type, handle, number, ToDriver(state.data()), &native,
                        ToDriver(text.data()), static_cast<SQLSMALLINT>(text.size()), &length);
}

SQLRETURN ReadRecord(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT number, std::string& state,
                     std::string& text, SQLINTEGER& native, SQLSMALLINT& length) {
  return SQLGetDiagRec(type, handle, number, ToDriver(state.data()), &native, ToDriver(text.data()),
                       static_cast<SQLSMALLINT>(text.size()), &length);
}

template <class Unit>
void CollectAs(SQLSMALLINT type, SQLHANDLE handle, Diagnostics& diagnostics) {
  constexpr SQLSMALLINT kMostRecords = 32;
  constexpr std::size_t kLongestText = 4096;
  constexpr std::size_t kStateLength = 5;
  std::basic_string<Unit> text(kLongestText, Unit{});
  for (SQLSMALLINT number = 1; number <= kMostRecords; ++number) {
    std::basic_string<Unit> state(kStateLength + 1, Unit{});
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    if (!SQL_SUCCEEDED(ReadRecord(type, handle, number, state, text, native, length))) return;
    diagnostics.push_back({TextIn(state, kStateLength), native, TextIn(text, length)});
  }
}

}  // namespace

std::optional<DriverText> DriverText::From(std::string_view text, Encoding encoding,
                                           Diagnostics& diagnostics) {
  // Lengths are passed as 32-bit numbers, and drivers multiply them.
  constexpr std::size_t kLongest = std::numeric_limits<SQLINTEGER>::max() / 8;
  auto wide = text.size() <= kLongest ? platform::WideFromNarrow(text) : std::nullopt;
  if (!wide || text.find('\0') != std::string_view::npos) {
    diagnostics.push_back(
        {kNotText, 0, "the text is not valid in the code page, contains a NUL, or is too long"});
    return std::nullopt;
  }
  DriverText result;
  result.encoding_ = encoding;
  if (encoding == Encoding::kWide) {
    result.wide_ = std::move(*wide);
  } else {
    result.narrow_ = text;
  }
  return result;
}

SQLRETURN DriverText::Connect(SQLHDBC connection) {
  if (encoding_ == Encoding::kWide) {
    return SQLDriverConnectW(connection, nullptr, ToDriver(wide_.data()),
                             static_cast<SQLSMALLINT>(wide_.size()), nullptr, 0, nullptr,
                             SQL_DRIVER_NOPROMPT);
  }
  return SQLDriverConnect(connection, nullptr, ToDriver(narrow_.data()),
                          static_cast<SQLSMALLINT>(narrow_.size()), nullptr, 0, nullptr,
                          SQL_DRIVER_NOPROMPT);
}

SQLRETURN DriverText::Execute(SQLHSTMT statement) {
  if (encoding_ == Encoding::kWide) {
    return SQLExecDirectW(statement, ToDriver(wide_.data()), static_cast<SQLINTEGER>(wide_.size()));
  }
  return SQLExecDirect(statement, ToDriver(narrow_.data()),
                       static_cast<SQLINTEGER>(narrow_.size()));
}

SQLRETURN DriverText::Bind(SQLHSTMT statement, SQLUSMALLINT number) {
  // Some engines give longer texts another type.
  constexpr SQLULEN kLongestPlain = 4000;
  const bool is_wide = encoding_ == Encoding::kWide;
  const SQLULEN size = std::max<std::size_t>({wide_.size(), narrow_.size(), 1});
  const bool is_plain = size <= kLongestPlain;
  const SQLSMALLINT wide_type = is_plain ? SQL_WVARCHAR : SQL_WLONGVARCHAR;
  const SQLSMALLINT narrow_type = is_plain ? SQL_VARCHAR : SQL_LONGVARCHAR;
  bytes_ = static_cast<SQLLEN>(is_wide ? wide_.size() * sizeof(SQLWCHAR) : narrow_.size());
  SQLPOINTER const text = is_wide ? static_cast<void*>(wide_.data()) : narrow_.data();
  return SQLBindParameter(statement, number, SQL_PARAM_INPUT, is_wide ? SQL_C_WCHAR : SQL_C_CHAR,
                          is_wide ? wide_type : narrow_type, size, 0, text, bytes_, &bytes_);
}

SQLRETURN DriverText::BindNull(SQLHSTMT statement, SQLUSMALLINT number) {
  static SQLLEN null = SQL_NULL_DATA;  // drivers only read it
  return SQLBindParameter(statement, number, SQL_PARAM_INPUT, SQL_C_CHAR, SQL_VARCHAR, 1, 0,
                          nullptr, 0, &null);
}

std::optional<ColumnFacts> DescribeColumn(SQLHSTMT statement, SQLUSMALLINT number,
                                          Encoding encoding) {
  return encoding == Encoding::kWide ? DescribeAs<char16_t>(statement, number)
                                     : DescribeAs<char>(statement, number);
}

Encoding EncodingOf(SQLHDBC connection) {
  // The driver manager cannot be asked for this, but its effect on a text shows: a wide driver
  // returns the text unchanged, while the high halves are lost before a narrow one.
  std::u16string probe = u"'\u4E2D\U0001F600'";
  std::u16string answer(32, u'\0');
  SQLINTEGER length = 0;
  const SQLRETURN result =
      SQLNativeSqlW(connection, ToDriver(probe.data()), static_cast<SQLINTEGER>(probe.size()),
                    ToDriver(answer.data()), static_cast<SQLINTEGER>(answer.size()), &length);
  if (!SQL_SUCCEEDED(result)) return Encoding::kWide;
  return answer.starts_with(probe) ? Encoding::kWide : Encoding::kNarrow;
}

void Collect(SQLSMALLINT handle_type, SQLHANDLE handle, Encoding encoding,
             Diagnostics& diagnostics) {
  const std::size_t before = diagnostics.size();
  if (encoding == Encoding::kWide) {
    CollectAs<char16_t>(handle_type, handle, diagnostics);
  } else {
    CollectAs<char>(handle_type, handle, diagnostics);
  }
  if (diagnostics.size() == before) diagnostics.push_back({kNoReason, 0, "no reason was given"});
}

}  // namespace qv::odbc
