// Files inside pack files, which are zip files.
#pragma once

#include <cstdint>
#include <string>

#include "base/platform/Folder.h"
#include "tools/qvstandin/common/ByteSink.h"
#include "tools/qvstandin/common/ErrorCode.h"
#include "tools/qvstandin/common/WorkLimit.h"

namespace qv::standin {

// Unpacks a member into `target`, as far as it is no longer than `longest` bytes. Memory use
// depends neither on the member nor on what the pack claims of itself.
Outcome ReadMember(platform::OpenedFile pack, const std::string& member, std::uint64_t longest,
                   ByteSink& target, WorkLimit& limit);

}  // namespace qv::standin
