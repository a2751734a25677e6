// The result set: what a query returns to its caller.
#pragma once

#include <cstdint>
#include <memory>

#include "qvnetcall/Export.h"
#include "qvnetcall/framework/Map.h"
#include "qvnetcall/framework/MapStringToString.h"
#include "qvnetcall/framework/OleDateTime.h"
#include "qvnetcall/framework/String.h"
#include "qvnetcall/framework/StringArray.h"

namespace qv {
class ResultTable;
}

// What CRvoDbRes::GetFieldType returns. Columns of any other type hold text.
namespace qv::field_type {

inline constexpr int kNoField = -1;  // there is no such column
inline constexpr int kUnknown = 0;   // text
// Integers.
inline constexpr int kSmallInt = 2;
inline constexpr int kInteger = 3;
inline constexpr int kBoolean = 11;  // 1 or 0
inline constexpr int kUnsignedTinyInt = 17;
inline constexpr int kBigInt = 20;
// Doubles.
inline constexpr int kDouble = 5;
// Dates.
inline constexpr int kDate = 7;
inline constexpr int kTimeStamp = 135;
// Numbers that are kept as text.
inline constexpr int kSingle = 4;
inline constexpr int kNumeric = 131;
// Text.
inline constexpr int kChar = 129;
inline constexpr int kVarChar = 200;
inline constexpr int kLongVarChar = 201;
inline constexpr int kVarWChar = 202;
// Paths of files that hold binary values.
inline constexpr int kLongVarBinary = 205;

}  // namespace qv::field_type

// A table in memory with typed columns and a cursor. Each column holds integers, doubles, dates or
// text, depending on its type code. The calls that the platform knows limit integers to 32 bits and
// cannot tell a missing value from a zero; those marked as extensions give what the server sent.
// Row and column indexes start at 0. Field names match regardless of the case of ASCII letters; if
// several columns have the same name, the first one is meant. A result set belongs to one caller
// and one thread; nothing is locked.
//
// Reading by row and column never fails: outside the table, or for an unknown name, it returns the
// neutral value. CInvalidArgException is thrown, by value, only where a comment says so; otherwise
// nothing but std::bad_alloc is thrown.
class QVNETCALL_API CRvoDbRes {
 public:
  // A table without columns.
  CRvoDbRes();
  ~CRvoDbRes();
  CRvoDbRes(const CRvoDbRes&) = delete;
  CRvoDbRes& operator=(const CRvoDbRes&) = delete;

  // Return the number of columns, and of rows. A table without columns has no rows.
  int GetFieldCount() const;
  int GetRecordCount() const;

  // Moves the cursor to the first row. Returns 1, or 0 without moving if there are no rows.
  int MoveFirst();
  // Moves the cursor to the next row. Returns 1, or 0 without moving if it is on the last row.
  int MoveNext();

  // Return a cell of the cursor's row as text: integers as "%d", doubles as "%f", dates as
  // "%Y-%m-%d %H:%M:%S" but empty for a zero date, text without the white space that the server
  // sent at its ends. Return an empty text for an unknown column. Here, and only here, white space
  // around a name is ignored. Throw CInvalidArgException if the column exists but the table has no
  // rows.
  CString operator[](int column) const;
  CString operator[](const char* field) const;

  // Return the same text for a cell of any row; empty outside the table and for an unknown name.
  CString _str(int row, int column) const;
  CString _str(int row, const CString& field) const;
  // Return a cell as an integer: integers as they are; doubles rounded up and then limited to 32
  // bits, not-a-number as 0; text as the decimal number that it starts with, or 0. Return 0 for
  // dates, outside the table and for an unknown name.
  long _int(int row, int column) const;
  long _int(int row, const CString& field) const;
  // Return a date. Return the valid date 0.0 for cells of any other type, outside the table and for
  // an unknown name.
  COleDateTime _time(int row, int column) const;
  COleDateTime _time(int row, const CString& field) const;
  // Return an integer or a double as a double. Return 0.0 for dates and text, which is not parsed,
  // outside the table and for an unknown name.
  double _dabl(int row, int column) const;
  double _dabl(int row, const CString& field) const;

  // These eight calls are not part of the platform's interface: they are extensions of this
  // library.

  // Return the type code of a column, one of qv::field_type or another code of a text, or
  // qv::field_type::kNoField if there is no such column.
  int GetFieldType(int column) const;
  int GetFieldType(const CString& field) const;
  // Return true if a cell has no value: the row has no attribute or element for it, or the database
  // says that it is null. An empty text is a value, and so are the zeros of an added row. A null
  // cell whose text is replaced is null as long as its text is empty. Return true outside the table
  // and for an unknown name.
  bool IsNull(int row, int column) const;
  bool IsNull(int row, const CString& field) const;
  // Return a cell as an integer, as _int does, but limited to 64 bits.
  std::int64_t _int64(int row, int column) const;
  std::int64_t _int64(int row, const CString& field) const;
  // Return a cell as text without loss: integers with all digits; doubles as the shortest text that
  // reads back as the same double; text as the server sent it, with the white space at its ends.
  // Dates become "YYYY-MM-DD HH:MM:SS", with ".mmm" if the server sent a fraction of a second that
  // is not 0, or only "YYYY-MM-DD" if it sent no more; further digits and the time zone are left
  // out, and so is a text that is no date. Return an empty text for a null cell, outside the table
  // and for an unknown name.
  CString _text(int row, int column) const;
  CString _text(int row, const CString& field) const;

  // Returns a column's name. Throws CInvalidArgException if there is no such column.
  CString GetFiledName(int column) const;
  // Returns the length in bytes of the longest text among a column's values, as measured while
  // loading, for the width of display columns. Throws CInvalidArgException if there is no such
  // column.
  int GetFiledLength(int column) const;
  // Returns the index of the column with that name, or -1. The name is not trimmed.
  int GetFieldNameId(const CString& field) const;

  // Removes a column; the columns after it move down by one index. An unknown name has no effect.
  void DelOneColumn(const CString& field);
  // Appends a row of zeros and empty texts; dates become 1970-01-01 00:00:00 UTC in local time.
  void AddOneRow();
  // Writes into the last row the sums of all rows above it, for those of `fields` that are columns
  // of integers or doubles; null cells count as 0. Sums of integers wrap at 32 bits, while _int64
  // and _text give the whole sum, limited to 64 bits. The last row is overwritten, so append it
  // first. Throws CInvalidArgException if there is something to sum and the table has no rows.
  void AddSumInfo(const CStringArray& fields);
  // Replaces each cell of a text column by what `texts` has for it. A cell that is not a key takes
  // the replacement of the nearest earlier row that had one, or else becomes empty. The column's
  // display length becomes that of the longest replacement. Has no effect on an unknown column or
  // one of another type. `texts` must not be null and stays the caller's.
  void ReplaceStrByFieldName(const CString& field, const CMapStringToString* texts);
  // Turns a column of integers into a text column (type code 202) of what `texts` has for its
  // values; a value that is not a key becomes an empty text. The column's display length becomes
  // that of the longest text. Has no effect on an unknown column or one of another type. `texts`
  // must not be null and stays the caller's.
  void ReplaceIntByFieldName(const CString& field, const CMap<long, long, CString, CString>* texts);

 private:
  friend class qv::ResultTable;

  std::unique_ptr<qv::ResultTable> table_;
};
