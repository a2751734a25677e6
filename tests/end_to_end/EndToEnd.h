// What the tests of the library as hosts load it share: a server over sample data, and a folder.
#pragma once

#include <gtest/gtest.h>
#include <qvnetcall/QvNetCall4.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/TempFolder.h"
#include "tools/qvstandin/net/StandIn.h"

namespace qv {

class EndToEnd : public testing::Test {
 protected:
  // A query with a column of every kind, among them a binary one ("digest").
  static constexpr const char kAllTypes[] =
      "select d.id, d.number, d.title, d.revision, d.locked, d.size_bytes, d.created, d.remarks, "
      "p.started, p.budget, u.name, r.digest from documents d"
      " join projects p on p.id = d.project_id join people u on u.id = d.author_id"
      " join revisions r on r.document_id = d.id where d.id <= 100 order by d.id, r.revision";

  EndToEnd() {
    CRvoServer::InitNet();
    std::filesystem::create_directory(folder_.Path() / "temp");
    CRvoDatabase::SetFileTempInfo((folder_.Path() / "temp" / "").string().c_str());
    CRvoServer::SetCachePath(folder_.At("cache").c_str());
  }
  ~EndToEnd() override {
    CRvoServer::SetCacheState(0);
    CRvoServer::SetCachePath("");
    CRvoServer::FinitNet();
    CRvoDatabase::Ini();
  }

  StandInOptions Options() const {
    StandInOptions options;
    options.data_folder = folder_.At("data");
    return options;
  }
  // Starts a server and connects to its port for sockets.
  static std::unique_ptr<StandIn> Serve(const StandInOptions& options) {
    auto server = std::make_unique<StandIn>(options);
    std::string error;
    EXPECT_TRUE(server->Start(&error)) << error;
    CRvoServer::SetConinfo("127.0.0.1", server->Port());
    CRvoDatabase::SetNeedUpdateCompressState();
    return server;
  }

  static void ConnectTo(std::uint16_t port, bool web) {
    CRvoServer::SetConinfo("127.0.0.1", port);
    CRvoServer::SetServerType(web ? "WEB_IIS" : "TCP_IP", "127.0.0.1", port);
  }

  using RowsCall = int (*)(const CString*, CRvoDbRes*, const char*, int);
  // Returns all cells of a query as text, or "result N".
  static std::string Rows(const char* text, int use_cache = 0,
                          RowsCall call = CRvoDatabase::SelectSQL) {
    CRvoDbRes rows;
    const CString sql(text);
    const int result = call(&sql, &rows, "DESIGNDB", use_cache);
    if (result != 0) return "result " + std::to_string(result);
    std::string all;
    for (int row = 0; row < rows.GetRecordCount(); ++row) {
      for (int column = 0; column < rows.GetFieldCount(); ++column) {
        all += CellOf(rows, row, column) + "|";
      }
      all += "\n";
    }
    return all;
  }
  static int Execute(const char* text) {
    const CString sql(text);
    return CRvoDatabase::ExecuteSQL(&sql, "DESIGNDB");
  }
  static int ExecuteBatch(const std::vector<std::string>& texts) {
    CStringArray sqls;
    for (const std::string& text : texts) sqls.Add(text.c_str());
    return CRvoDatabase::ExecuteMultiSQL(&sqls, "DESIGNDB");
  }

  void DropBinaryCells() const {
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Path() / "temp")) {
      EXPECT_TRUE(entry.path().filename().string().starts_with("qvcd")) << entry.path();
      std::filesystem::remove(entry.path());
    }
  }

  const TempFolder folder_;

 private:
  // Binary cells hold the names of files, which differ from call to call; their bytes do not.
  static std::string CellOf(const CRvoDbRes& rows, int row, int column) {
    const std::string cell = static_cast<const char*>(rows._str(row, column));
    const bool binary = rows.GetFiledName(column) == "digest" && !cell.empty();
    return binary ? BytesOf(cell) : cell;
  }
};

}  // namespace qv
