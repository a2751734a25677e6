#include "CacheFill.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

namespace qv::bench {

namespace {

namespace fs = std::filesystem;

fs::path AnyAnswer(const std::string& folder) {
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() == ".dat") return entry.path();
  }
  throw std::runtime_error("the cache kept no answer");
}

std::string Content(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// A name of the same form: the identifier in it ends with the number.
std::string NameOf(std::string name, int number) {
  const std::string digits = fmt::format("{:08X}", number);
  return name.replace(name.rfind('}') - digits.size(), digits.size(), digits);
}

struct Closer {
  void operator()(sqlite3* database) const { sqlite3_close(database); }
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

class Index {
 public:
  explicit Index(const std::string& file) {
    sqlite3* opened = nullptr;
    const int result = sqlite3_open_v2(file.c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
    database_.reset(opened);
    Check(result == SQLITE_OK);
    Run("begin immediate");
    sqlite3_stmt* put = nullptr;
    Check(sqlite3_prepare_v2(opened,
                             "insert into qv_tp_sqlindex (query_text, file_name, compress_flag) "
                             "values (cast(?1 as blob), ?2, 1)",
                             -1, &put, nullptr) == SQLITE_OK);
    put_.reset(put);
  }

  void Put(const std::string& key, const std::string& file) {
    sqlite3_stmt* const put = put_.get();
    sqlite3_bind_text(put, 1, key.c_str(), -1, SQLITE_STATIC);
    sqlite3_bind_text(put, 2, file.c_str(), -1, SQLITE_STATIC);
    Check(sqlite3_step(put) == SQLITE_DONE);
    sqlite3_reset(put);
  }

  void Commit() { Run("commit"); }

 private:
  void Run(const char* sql) {
    Check(sqlite3_exec(database_.get(), sql, nullptr, nullptr, nullptr) == SQLITE_OK);
  }
  void Check(bool done) const {
    if (!done) throw std::runtime_error(sqlite3_errmsg(database_.get()));
  }

  std::unique_ptr<sqlite3, Closer> database_;
  std::unique_ptr<sqlite3_stmt, Closer> put_;
};

}  // namespace

void FillCache(const std::string& folder, int entries) {
  const fs::path answer = AnyAnswer(folder);
  const std::string content = Content(answer);
  Index index(folder + "/qvdbcache.db3");
  for (int i = 1; i < entries; ++i) {
    const std::string name = NameOf(answer.filename().string(), i);
    std::ofstream(fs::path(folder) / name, std::ios::binary) << content;
    index.Put(fmt::format("a query that was asked before, number {}", i), name);
  }
  index.Commit();
}

}  // namespace qv::bench
