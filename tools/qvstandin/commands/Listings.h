// Listings of files and folders: their order, and the records in which they are sent.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/platform/Folder.h"
#include "tools/qvstandin/stores/StoreNames.h"

namespace qv::standin {

// The bytes of records that fit into the blocks in which clients receive replies, beside the header
// and the fields with the counts.
inline constexpr std::uint64_t kShortListing = 512'000 - 512;
inline constexpr std::uint64_t kLongListing = 1'048'576 - 512;

// Returns the bytes of a record as they are sent. They belong to `record`.
template <class Record>
std::string_view RecordBytes(const Record& record) {
  return {reinterpret_cast<const char*>(record.bytes), sizeof record.bytes};
}

enum class ListingOrder { kByName = 0, kNewestFirst = 1, kLargestFirst = 2 };

// Sorts the entries; those that are equal in `order` by name.
void SortListing(std::vector<platform::Entry>& entries, ListingOrder order, bool is_reversed);

// Returns the records of files one after another. Names have at most kLongestFileName bytes.
[[nodiscard]] std::string FileRecords(std::span<const platform::Entry> files);
// Returns the records of folders one after another. Names have at most kLongestFolderName bytes;
// `are_parents` says for each folder whether it contains folders.
[[nodiscard]] std::string FolderRecords(std::span<const platform::Entry> folders,
                                        const std::vector<bool>& are_parents);
// Returns the records of sub-stores: these folders of the top folder, on a disk with `free_bytes`
// left.
[[nodiscard]] std::string SubStoreRecords(std::span<const platform::Entry> folders,
                                          std::uint64_t free_bytes);

}  // namespace qv::standin
