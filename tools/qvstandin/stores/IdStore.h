// The files that clients store by identifier.
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

// Each identifier has a folder with its files by name. Identifiers below zero and names that are
// not allowed are kBadName. Any thread may use it.
class IdStore {
 public:
  // The arguments are those of FileStore.
  IdStore(platform::Folder top, std::string incoming)
      : top_(std::move(top)), incoming_(std::move(incoming)) {}

  // Returns the path of an identifier's folder, which clients compute as well: "1\23\45\1234567\"
  // for 1234567. The identifier must not be negative.
  [[nodiscard]] static std::string FolderOf(std::int32_t id);

  // Moves the file at `file`, which is whole and on the disk, to the target and atomically replaces
  // a file that is there.
  Outcome Put(const IdName& target, const std::string& file);
  Outcome Open(const IdName& wanted, std::optional<platform::OpenedFile>& opened) const;
  Outcome Delete(const IdName& wanted);
  // Replaces a file at `to`.
  Outcome Copy(const IdName& from, const IdName& to, WorkLimit& limit);

 private:
  // If `make` is set, creates the identifier's folder if it is missing.
  Outcome Find(const IdName& wanted, bool make, std::optional<Place>& place) const;

  const platform::Folder top_;
  const std::string incoming_;
};

}  // namespace qv::standin
