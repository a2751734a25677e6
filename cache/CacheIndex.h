// The index of a cache folder: which file holds the answer to which query.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <optional>
#include <string>
#include <unordered_set>

#include "IndexStatement.h"

namespace qv {

// An SQLite database that several programs may use at once, each from one thread at a time. Keys
// are arbitrary bytes. Content that is read may have been written by anybody. A power cut takes the
// newest changes at most, in their order.
class CacheIndex {
 public:
  struct Entry {
    std::string file;  // empty if the stored value is not a file name
    int flag = 0;
  };

  // Opens or creates the database at `path`. A damaged one, or a file that is not a database, is
  // moved aside (to the path plus ".broken") and replaced by a new one. Returns null on failure.
  // Returns null and changes nothing if the database holds anything but the index's own table, or
  // is not a regular file.
  [[nodiscard]] static std::unique_ptr<CacheIndex> Open(const std::string& path);
  ~CacheIndex();
  CacheIndex(const CacheIndex&) = delete;
  CacheIndex& operator=(const CacheIndex&) = delete;

  // Makes all changes between Begin() and Commit() atomic; no other program changes the index
  // meanwhile. The destructor rolls back what was not committed.
  class Transaction {
   public:
    explicit Transaction(CacheIndex& index) : index_(index) {}
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    [[nodiscard]] bool Begin();
    [[nodiscard]] bool Commit();

   private:
    CacheIndex& index_;
  };

  [[nodiscard]] std::optional<Entry> Find(const std::string& key);
  // Adds the entry, or replaces the key's earlier one.
  [[nodiscard]] bool Put(const std::string& key, const Entry& entry);
  // Removes the key's entry if it still names `file`.
  [[nodiscard]] bool Remove(const std::string& key, const std::string& file);
  [[nodiscard]] bool RemoveAll();
  // Returns the files that have an entry, or nothing if they cannot all be read.
  [[nodiscard]] std::optional<std::unordered_set<std::string>> Files();

 private:
  struct Closer {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
  };

  CacheIndex() = default;
  // SQLite result codes.
  [[nodiscard]] int Connect(const std::string& path);
  // Runs a statement without parameters and rows.
  [[nodiscard]] int Execute(const char* sql);
  // Returns SQLITE_ROW for the index, SQLITE_DONE for an empty database, or an error.
  [[nodiscard]] int Recognise();
  [[nodiscard]] int Check();
  void UseLog();
  [[nodiscard]] int PrepareAll();

  // Declared first, so that it is closed after its statements.
  std::unique_ptr<sqlite3, Closer> database_;
  IndexStatement find_, put_, remove_, files_, begin_, commit_;
  bool has_log_ = false;
};

}  // namespace qv
