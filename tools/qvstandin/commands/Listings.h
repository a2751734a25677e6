// Listings of files and folders: their order, and the records that they travel in.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/platform/Folder.h"
#include "tools/qvstandin/stores/StoreNames.h"

namespace qv::standin {

// What fits into the blocks that clients have for replies, beside the header and the fields that
// tell how much it is.
inline constexpr std::uint64_t kShortListing = 512'000 - 512;
inline constexpr std::uint64_t kLongListing = 1'048'576 - 512;

// A record as it stands in a field.
template <class Record>
std::string_view RecordBytes(const Record& record) {
  return {reinterpret_cast<const char*>(record.bytes), sizeof record.bytes};
}

enum class ListingOrder { kByName = 0, kNewestFirst = 1, kLargestFirst = 2 };

// Names decide between entries that are alike otherwise.
void SortListing(std::vector<platform::Entry>& entries, ListingOrder order, bool is_reversed);

// The records of files, back to back; their names are no longer than kLongestFileName.
[[nodiscard]] std::string FileRecords(std::span<const platform::Entry> files);
// The same for folders and kLongestFolderName; `are_parents` tells of each whether folders are in
// it.
[[nodiscard]] std::string FolderRecords(std::span<const platform::Entry> folders,
                                        const std::vector<bool>& are_parents);
// The sub-stores that these folders of the top folder are, on a disk with so many bytes left.
[[nodiscard]] std::string SubStoreRecords(std::span<const platform::Entry> folders,
                                          std::uint64_t free_bytes);

}  // namespace qv::standin
