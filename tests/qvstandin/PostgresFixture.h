// What the tests of databases in PostgreSQL share.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/PostgresServer.h"
#include "tools/qvstandin/databases/Database.h"
#include "tools/qvstandin/recordsets/AnswerSpool.h"
#include "tools/qvstandin/recordsets/RecordsetWriter.h"

namespace qv::standin {

inline std::string Source(const char* script) {
  return std::string(QV_STANDIN_DATA) + "/" + script;
}

// Creates an empty database with the types that the sample's tables need.
inline void EmptyPostgres() {
  const PostgresServer& server = PostgresServer::Shared();
  ASSERT_TRUE(server.Run({"-c", "DROP SCHEMA public CASCADE", "-c", "CREATE SCHEMA public", "-f",
                          Source("postgresql.sql")}));
}

// Stores an answer as text; nulls are "-".
class Kept : public RowSink {
 public:
  bool Begin(const std::vector<Column>& columns) override {
    this->columns = columns;
    return true;
  }
  bool Row(const std::vector<Cell>& cells) override {
    std::vector<std::string>& row = rows.emplace_back();
    for (std::size_t i = 0; i < cells.size(); ++i) {
      std::string text;
      row.push_back(AppendCellText(columns[i].kind, BinaryForm::kHex, cells[i], text) ? text : "-");
    }
    return true;
  }

  std::vector<Column> columns;
  std::vector<std::vector<std::string>> rows;
};

// Keeps the whole answer in memory.
class WrittenSink : public AnswerSpool {
 public:
  WrittenSink() : AnswerSpool("", 1 << 20, 1 << 20) {}
};

}  // namespace qv::standin
