// Files in a store, whichever way they are found, and files in pack files.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/platform/Folder.h"
#include "tools/qvstandin/common/ByteSink.h"
#include "tools/qvstandin/common/Work.h"

namespace qv::standin {

// A file's name and its folder. The file need not exist.
struct Place {
  platform::Folder folder;
  std::string name;
};

// Moves the file at `path` to the place and atomically replaces a file that is there.
Outcome PutFile(const Place& place, const std::string& path);
Outcome OpenFile(const Place& place, std::optional<platform::OpenedFile>& opened);
Outcome RemoveFile(const Place& place);

// Copies a file to `target` and finishes it.
Outcome ReadAll(platform::OpenedFile source, ByteSink& target, WorkLimit& limit);

// Unpacks a member of a pack file, which is a zip file, into `target` and finishes it. Refuses
// members of more than `longest` bytes. Memory use depends neither on the member nor on what the
// pack claims.
Outcome ReadMember(platform::OpenedFile pack, const std::string& member, std::uint64_t longest,
                   ByteSink& target, WorkLimit& limit);

}  // namespace qv::standin
