// The result set: what a query returns to its caller.
#pragma once

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

// A table in memory with typed columns and a cursor. Each column holds 32-bit integers, doubles,
// dates or text, depending on its type code. Row and column indexes start at 0. Field names match
// regardless of the case of ASCII letters; if several columns have the same name, the first one is
// meant. A result set belongs to one caller and one thread; nothing is locked.
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
  // "%Y-%m-%d %H:%M:%S" but empty for a zero date, text as it is. Return an empty text for an
  // unknown column. Here, and only here, white space around a name is ignored. Throw
  // CInvalidArgException if the column exists but the table has no rows.
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
  // of integers or doubles; sums of integers wrap at 32 bits. The last row is overwritten, so
  // append it first. Throws CInvalidArgException if there is something to sum and the table has no
  // rows.
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
