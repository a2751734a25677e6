// The files that clients keep on the server by identifier.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "StoredFiles.h"

namespace qv::standin {

struct IdName {
  std::int32_t id = 0;
  std::string name;
};

// Each identifier has a folder, which holds its files by their names. Identifiers below zero and
// names that are no names are kBadName. Any thread.
class IdStore {
 public:
  // As of FileStore.
  IdStore(platform::Folder top, std::string incoming)
      : top_(std::move(top)), incoming_(std::move(incoming)) {}

  // The path of an identifier's folder, as clients compute it as well: "1\23\45\1234567\" for
  // 1234567, which is not negative.
  [[nodiscard]] static std::string FolderOf(std::int32_t id);

  // Moves the finished file at `file` there, replacing one that was there in one step.
  Outcome Put(const IdName& target, const std::string& file);
  Outcome Open(const IdName& wanted, std::optional<platform::OpenedFile>& opened) const;
  Outcome Delete(const IdName& wanted);
  // Replaces a file at `to`.
  Outcome Copy(const IdName& from, const IdName& to, WorkLimit& limit);

 private:
  // `make`: makes the identifier's folder when it is missing.
  Outcome Find(const IdName& wanted, bool make, std::optional<Place>& place) const;

  const platform::Folder top_;
  const std::string incoming_;
};

}  // namespace qv::standin
