#include "Listings.h"

#include <algorithm>

#include "Command.h"
#include "qvnetcall/standin/Records.h"

namespace qv::standin {

namespace {

using platform::Entry;

static_assert(records::file::kName.size == kLongestFileName + 1);
static_assert(records::folder::kName.size == kLongestFolderName + 1);
static_assert(records::sub_store::kName.size > kLongestFolderName);
static_assert(records::sub_store::kPath.size > kLongestFolderName);

bool ComesBefore(const Entry& a, const Entry& b, ListingOrder order) {
  if (order == ListingOrder::kNewestFirst && a.modified != b.modified) {
    return a.modified > b.modified;
  }
  if (order == ListingOrder::kLargestFirst && a.size != b.size) return a.size > b.size;
  return NameComesBefore(a.name, b.name);
}

// Names that are too long were refused or left out before.
template <class Record>
void SetName(Record& record, records::Field field, const std::string& name) {
  static_cast<void>(records::SetText(record, field, name));
}

}  // namespace

void SortListing(std::vector<Entry>& entries, ListingOrder order, bool is_reversed) {
  std::ranges::sort(entries, [&](const Entry& a, const Entry& b) {
    return is_reversed ? ComesBefore(b, a, order) : ComesBefore(a, b, order);
  });
}

std::string FileRecords(std::span<const Entry> files) {
  std::string bytes;
  for (const Entry& file : files) {
    CZelkorSvrFileInfo record{};
    records::SetNumber(record, records::file::kSize, file.size);
    records::SetNumber(record, records::file::kModified, static_cast<std::uint64_t>(file.modified));
    SetName(record, records::file::kName, file.name);
    bytes += RecordBytes(record);
  }
  return bytes;
}

std::string FolderRecords(std::span<const Entry> folders, const std::vector<bool>& are_parents) {
  std::string bytes;
  for (std::size_t i = 0; i < folders.size(); ++i) {
    CZelkorSvrFolderInfo record{};
    records::SetNumber(record, records::folder::kModified,
                       static_cast<std::uint64_t>(folders[i].modified));
    records::SetNumber(record, records::folder::kFlags,
                       are_parents[i] ? records::folder::kHasFolders : 0);
    SetName(record, records::folder::kName, folders[i].name);
    bytes += RecordBytes(record);
  }
  return bytes;
}

std::string SubStoreRecords(std::span<const Entry> folders, std::uint64_t free_bytes) {
  std::string bytes;
  for (const Entry& folder : folders) {
    CZelkorSvrSubStoreInfo record{};
    records::SetNumber(record, records::sub_store::kFree, free_bytes);
    SetName(record, records::sub_store::kName, folder.name);
    SetName(record, records::sub_store::kPath, folder.name);
    bytes += RecordBytes(record);
  }
  return bytes;
}

}  // namespace qv::standin
