// The result set: what a query gives to its caller.
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

// A table in memory with typed columns and a cursor. Columns hold 32-bit integers, doubles, dates
// or text, as their type code says. Rows and columns count from 0. Field names match ignoring the
// case of ASCII letters; the first of several columns of one name is meant. A result set belongs to
// one caller and one thread; nothing is locked.
//
// Reading by row and column never fails: outside the table, or with an unknown name, the answer is
// the neutral value. Where CInvalidArgException is named, it is thrown by value; the other members
// throw nothing but std::bad_alloc.
class QVNETCALL_API CRvoDbRes {
 public:
  CRvoDbRes();
  ~CRvoDbRes();
  CRvoDbRes(const CRvoDbRes&) = delete;
  CRvoDbRes& operator=(const CRvoDbRes&) = delete;

  int GetFieldCount() const;
  int GetRecordCount() const;

  // Puts the cursor on the first row: 1, or 0 and no move when there are no rows.
  int MoveFirst();
  // Moves the cursor to the next row: 1, or 0 and no move when it stands on the last.
  int MoveNext();

  // The text of a cell in the cursor's row: integers as "%d", doubles as "%f", dates as "%Y-%m-%d
  // %H:%M:%S" and empty for a zero date, text as it is. Empty for an unknown column. A name is
  // trimmed here, and only here. Throws CInvalidArgException when the result set has the column but
  // no rows.
  CString operator[](int column) const;
  CString operator[](const char* field) const;

  // The same text for any row; empty outside the table.
  CString _str(int row, int column) const;
  CString _str(int row, const CString& field) const;
  // Integers as they are; doubles rounded up, then held within 32 bits (not-a-number gives 0); text
  // by its leading digits; dates, and outside the table, 0.
  long _int(int row, int column) const;
  long _int(int row, const CString& field) const;
  // Dates as they are; everything else, and outside the table, the valid date 0.0.
  COleDateTime _time(int row, int column) const;
  COleDateTime _time(int row, const CString& field) const;
  // Integers and doubles; everything else, and outside the table, 0.0. Text is not parsed.
  double _dabl(int row, int column) const;
  double _dabl(int row, const CString& field) const;

  // A column's name. Throws CInvalidArgException for a column that is not there.
  CString GetFiledName(int column) const;
  // The length in bytes of the longest text of any value of a column, as measured while loading;
  // for sizing display columns. Throws CInvalidArgException for a column that is not there.
  int GetFiledLength(int column) const;
  // The column of that name, or -1. The name is not trimmed.
  int GetFieldNameId(const CString& field) const;

  // Removes a column; those behind it move up. An unknown name does nothing.
  void DelOneColumn(const CString& field);
  // Appends a row of zeros and empty texts; dates become 1970-01-01 00:00:00 UTC in local time.
  void AddOneRow();
  // Writes the sums of the rows above into the last row, for the integer and double columns among
  // `fields`; integers wrap at 32 bits. The last row is overwritten: append it first. Throws
  // CInvalidArgException when there are no rows.
  void AddSumInfo(const CStringArray& fields);
  // Replaces the cells of a text column by what `texts` has for them. A cell that is not a key
  // takes the replacement of the nearest earlier row that was found, or empty text. `texts` stays
  // the caller's and is not null.
  void ReplaceStrByFieldName(const CString& field, const CMapStringToString* texts);
  // Turns an integer column into a text column (type code 202) of what `texts` has for its values;
  // a value that is not a key becomes empty text. `texts` stays the caller's and is not null.
  void ReplaceIntByFieldName(const CString& field, const CMap<long, long, CString, CString>* texts);

 private:
  friend class qv::ResultTable;

  std::unique_ptr<qv::ResultTable> table_;
};
