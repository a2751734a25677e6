#include "ReaderComparison.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <optional>
#include <sstream>
#include <variant>

#include "resultset/ResultTable.h"
#include "resultset/readers/RecordsetReaders.h"
#include "tests/support/TempFolder.h"

namespace qv {

namespace {

// Values as they are written in reports.
std::string Shown(const std::string& text) {
  std::string shown = "\"";
  for (const char c : text) {
    char escaped[8];
    const bool plain = c >= ' ' && c <= '~';
    std::snprintf(escaped, sizeof escaped, plain ? "%c" : "\\x%02X", static_cast<unsigned char>(c));
    shown += escaped;
  }
  return shown + "\"";
}

template <typename Number>
std::string Shown(Number number) {
  return std::to_string(number);
}

// What the accessors of a cell shall give.
struct Expected {
  std::string text;
  long integer = 0;
  double real = 0.0;
  COleDateTime date;
};

std::string Printed(const char* format, double value) {
  std::string text(400, '\0');
  text.resize(static_cast<std::size_t>(std::snprintf(text.data(), text.size(), format, value)));
  return text;
}

long RoundedUp(double value) {
  using Limits = std::numeric_limits<std::int32_t>;
  if (std::isnan(value)) return 0;
  return static_cast<long>(std::fmin(std::fmax(std::ceil(value), Limits::min()), Limits::max()));
}

// The length of the shortest text from which a finite number is read, in digits only or with an
// exponent.
std::size_t ShortestLength(double value) {
  int decimals = 0;
  std::string text = Printed("%.0e", value);
  while (std::strtod(text.c_str(), nullptr) != value) {
    text = Printed(("%." + std::to_string(++decimals) + "e").c_str(), value);
  }
  const int exponent = std::atoi(text.substr(text.find('e') + 1).c_str());
  const int after_point = std::max(0, decimals - exponent);
  const std::string plain = Printed(("%." + std::to_string(after_point) + "f").c_str(), value);
  return std::min(text.size(), plain.size());
}

// What is wrong with the exact text of a number; empty if nothing is.
std::string FaultOfExactText(double value, const std::string& text) {
  if (std::isnan(value)) return text == "nan" ? "" : "not nan";
  if (std::isinf(value)) return text == (value > 0 ? "inf" : "-inf") ? "" : "not infinite";
  const double read = std::strtod(text.c_str(), nullptr);
  if (read != value || std::signbit(read) != std::signbit(value)) return "another number";
  return text.size() == ShortestLength(value) ? "" : "not the shortest";
}

std::int64_t RoundedUpTo64(double value) {
  using Limits = std::numeric_limits<std::int64_t>;
  if (std::isnan(value)) return 0;
  if (value >= 0x1p63) return Limits::max();
  return value <= -0x1p63 ? Limits::min() : static_cast<std::int64_t>(std::ceil(value));
}

struct ExpectedOf {
  Expected operator()(std::int32_t value) const {
    return {std::to_string(value), value, static_cast<double>(value), {}};
  }
  Expected operator()(double value) const {
    return {Printed("%f", value), RoundedUp(value), value, {}};
  }
  Expected operator()(const std::optional<ReferenceDate>& date) const {
    if (!date) return {};
    char text[40];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", date->year, date->month,
                  date->day, date->hour, date->minute, date->second);
    return {
        text, 0, 0.0,
        COleDateTime(date->year, date->month, date->day, date->hour, date->minute, date->second)};
  }
  Expected operator()(const std::string& text) const {
    return {text, DecimalByReference(text), 0.0, {}};
  }
  // The path is the reader's to choose; its text is checked by what the file holds.
  Expected operator()(const ReferenceBinary&) const { return {}; }
};

bool SameReal(double a, double b) {
  return (std::isnan(a) && std::isnan(b)) || (a == b && std::signbit(a) == std::signbit(b));
}

// The first difference between a reader's result and the reference's; empty when they agree.
class Comparison {
 public:
  Comparison(CRvoDbRes& result, ReferenceTable& reference, bool shared_file)
      : result_(result), reference_(reference), shared_file_(shared_file) {}

  std::string Difference() {
    const std::size_t columns = reference_.columns.size();
    Check("column count", result_.GetFieldCount(), static_cast<int>(columns));
    if (Differs()) return difference_.str();
    const std::size_t rows = columns == 0 ? 0 : reference_.columns[0].cells.size();
    Check("row count", result_.GetRecordCount(), static_cast<int>(rows));
    for (std::size_t i = 0; i < columns && !Differs(); ++i) Compare(static_cast<int>(i));
    return difference_.str();
  }

 private:
  bool Differs() const { return !difference_.view().empty(); }

  template <typename T>
  void Check(const std::string& what, const T& actual, const T& expected) {
    if (actual == expected || Differs()) return;
    difference_ << what << ": " << Shown(actual) << ", expected " << Shown(expected);
  }

  void Compare(int index) {
    ReferenceColumn& column = reference_.columns[static_cast<std::size_t>(index)];
    const std::string where = "column " + std::to_string(index);
    const Column& read = ResultTable::Of(result_).Columns()[static_cast<std::size_t>(index)];
    Check(where + " name", read.name, column.name);
    Check(where + " type", result_.GetFieldType(index), column.type);
    Check(where + " declared length", read.declared_length, column.declared_length);
    widest_path_ = column.display_length;
    for (std::size_t row = 0; row < column.cells.size() && !Differs(); ++row) {
      Compare(static_cast<int>(row), index, column.cells[row]);
      CompareExact(static_cast<int>(row), index, column);
    }
    column.display_length = widest_path_;
    Check(where + " display length", result_.GetFiledLength(index),
          static_cast<int>(column.display_length));
  }

  void Compare(int row, int index, const ReferenceCell& cell) {
    const std::string where = "row " + std::to_string(row) + " column " + std::to_string(index);
    const Expected expected = std::visit(ExpectedOf(), cell);
    const std::string text(result_._str(row, index).View());
    if (const auto* binary = std::get_if<ReferenceBinary>(&cell)) {
      CompareFile(where, text, *binary);
    } else {
      Check(where + " text", text, expected.text);
      Check(where + " integer", result_._int(row, index), expected.integer);
    }
    Check(where + " date", result_._time(row, index).m_dt, expected.date.m_dt);
    if (!SameReal(result_._dabl(row, index), expected.real)) {
      Check(where + " real", Printed("%a", result_._dabl(row, index)),
            Printed("%a", expected.real));
    }
  }

  void CompareExact(int row, int index, const ReferenceColumn& column) {
    const std::string where = "row " + std::to_string(row) + " column " + std::to_string(index);
    const ReferenceExact& exact = column.exact[static_cast<std::size_t>(row)];
    const std::string text(result_._text(row, index).View());
    Check(where + " is null", result_.IsNull(row, index), exact.is_null);
    const auto* const real = std::get_if<double>(&column.cells[static_cast<std::size_t>(row)]);
    if (column.type == 205) {
      Check(where + " exact path", text, std::string(result_._str(row, index).View()));
    } else if (real == nullptr || exact.is_null) {
      Check(where + " exact text", text, exact.text);
      Check(where + " exact integer", result_._int64(row, index), exact.integer);
    } else {
      Check(where + " exact text " + text, FaultOfExactText(*real, text), std::string());
      Check(where + " exact integer", result_._int64(row, index), RoundedUpTo64(*real));
    }
  }

  void CompareFile(const std::string& where, const std::string& path, const ReferenceBinary& cell) {
    Check(where + " has a file", !path.empty(), cell.bytes.has_value());
    if (!cell.bytes || Differs()) return;
    widest_path_ = std::max(widest_path_, path.size());
    Check(where + " file exists", std::filesystem::exists(path), true);
    Check(where + " file", BytesOf(path), shared_file_ ? *reference_.last_binary : *cell.bytes);
  }

  CRvoDbRes& result_;
  ReferenceTable& reference_;
  const bool shared_file_;
  std::size_t widest_path_ = 0;
  std::ostringstream difference_;
};

bool Read(const ComparedDialect& dialect, const std::string& file, const std::string& path,
          const tagTEMPFILEINFO& temp_files, CRvoDbRes& result) {
  if (file.size() % 3 == 0) return dialect.read_bytes(file, result, temp_files);
  std::ofstream(path, std::ios::binary | std::ios::trunc) << file;
  return dialect.read(path.c_str(), result, temp_files);
}

}  // namespace

const ComparedDialect kRowsetDialect = {ReadRowsetFile, ReadRowset, ReadRowsetByReference, false};
const ComparedDialect kSchemaDialect = {ReadSchemaFile, ReadSchema, ReadSchemaByReference, true};

std::string Compare(const ComparedDialect& dialect, const std::string& file,
                    const std::string& path, const tagTEMPFILEINFO& temp_files, CRvoDbRes& result,
                    ReferenceTable& reference) {
  const bool expected = dialect.reference(file, reference);
  const bool read = Read(dialect, file, path, temp_files, result);
  if (read != expected) return read ? "read, but to be refused" : "refused, but to be read";
  return Comparison(result, reference, dialect.shared_file).Difference();
}

}  // namespace qv
