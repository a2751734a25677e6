// What can be done with a file in a store, whichever way it is found.
// Files inside pack files, which are zip files.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/platform/Folder.h"
#include "tools/qvstandin/common/ByteSink.h"
#include "tools/qvstandin/common/Work.h"

namespace qv::standin {

// A file's name, and the folder that holds it; the file need not be there.
struct Place {
  platform::Folder folder;
  std::string name;
};

// Moves the file at `path` there; a file that was there is replaced in one step.
Outcome PutFile(const Place& place, const std::string& path);
Outcome OpenFile(const Place& place, std::optional<platform::OpenedFile>& opened);
Outcome RemoveFile(const Place& place);

// Reads a file to its end.
Outcome ReadAll(platform::OpenedFile source, ByteSink& target, WorkLimit& limit);

// Unpacks a member into `target`, as far as it is no longer than `longest` bytes. Memory use
// depends neither on the member nor on what the pack claims of itself.
Outcome ReadMember(platform::OpenedFile pack, const std::string& member, std::uint64_t longest,
                   ByteSink& target, WorkLimit& limit);

}  // namespace qv::standin
