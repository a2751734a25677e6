// The index of a cache folder: which file holds the answer to which query.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <optional>
#include <string>
#include <unordered_set>

#include "IndexStatement.h"

namespace qv {

// An SQLite database that several programs may use at once. Not for several threads at once: its
// owner sees to that. Keys are bytes, whatever they hold. What is read back may have been written
// by anybody.
class CacheIndex {
 public:
  struct Entry {
    std::string file;  // empty when what stands there is no file name
    int flag = 0;
  };

  // Opens or creates the database at `path`. One that is damaged, or no database at all, is moved
  // aside (to the path with ".broken" at its end) and begun anew. Null when there is none to be
  // had. Null as well, and nothing changed, when it is a database that holds anything but the
  // index's own table, or is no plain file.
  [[nodiscard]] static std::unique_ptr<CacheIndex> Open(const std::string& path);

  // All changes between Begin() and Commit() happen together or not at all; no other program
  // changes the index meanwhile. What is not committed is undone at the end.
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
  // Adds the entry, or puts it in place of the key's earlier one.
  [[nodiscard]] bool Put(const std::string& key, const Entry& entry);
  // Removes the key's entry if it still names `file`.
  [[nodiscard]] bool Remove(const std::string& key, const std::string& file);
  [[nodiscard]] bool RemoveAll();
  // The files that have an entry; nothing when they cannot all be told.
  [[nodiscard]] std::optional<std::unordered_set<std::string>> Files();

 private:
  struct Closer {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
  };

  CacheIndex() = default;
  // SQLite result codes.
  [[nodiscard]] int Connect(const std::string& path);
  // Runs a statement that takes and gives nothing.
  [[nodiscard]] int Execute(const char* sql);
  // SQLITE_ROW for the index, SQLITE_DONE for an empty database.
  [[nodiscard]] int Recognise();
  [[nodiscard]] int Check();
  [[nodiscard]] int PrepareAll();

  // Declared first, so that it is closed after its statements.
  std::unique_ptr<sqlite3, Closer> database_;
  IndexStatement find_, put_, remove_, files_;
};

}  // namespace qv
