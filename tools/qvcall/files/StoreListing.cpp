#include "StoreListing.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <utility>

#include "qvnetcall/QvNetCall4.h"
#include "qvnetcall/standin/Records.h"
#include "tools/qvcall/system/ServerPath.h"

namespace qv::tool {
namespace {

// A reply has room for some more records than this.
constexpr int kPage = 4000;

ServerFile FileOf(const CZelkorSvrFileInfo& record) {
  return {records::Text(record, records::file::kName),
          records::Number(record, records::file::kSize),
          static_cast<std::int64_t>(records::Number(record, records::file::kModified))};
}

ServerFolder FolderFrom(const CZelkorSvrFolderInfo& record) {
  return {records::Text(record, records::folder::kName),
          static_cast<std::int64_t>(records::Number(record, records::folder::kModified)),
          (records::Number(record, records::folder::kFlags) & records::folder::kHasFolders) != 0};
}

SubStore SubStoreOf(const CZelkorSvrSubStoreInfo& record) {
  return {records::Text(record, records::sub_store::kName),
          records::Text(record, records::sub_store::kPath),
          records::Number(record, records::sub_store::kFree)};
}

// Converts the records of an array with `read`, and frees the array.
template <class Record, class Read>
auto Taken(Record* array, int count, Read read) {
  const std::unique_ptr<Record[]> records(array);
  std::vector<decltype(read(*array))> taken;
  for (int i = 0; records != nullptr && i < count; ++i) taken.push_back(read(array[i]));
  return taken;
}

// Records that are missing from an incomplete reply are all zeros.
template <class Entry>
std::size_t TakeNamelessOut(std::vector<Entry>& entries) {
  return std::erase_if(entries, [](const Entry& entry) { return entry.name.empty(); });
}

// Asks again after an empty answer: a reply that was lost looks like an empty folder, and its files
// would be left out silently.
bool AskUntilSomeCame(const std::function<bool()>& ask) {
  return ask() || (CRvoServer::GetIsNetworkBad(1) == 0 && ask());
}

// Returns how many records of a page were taken, 0 if the page is invalid or `take` returned false.
int TakePage(const CQvRvoBuf& page, const std::function<bool(const ServerFile&)>& take) {
  CZelkorSvrFileInfo record;
  const int records = static_cast<int>(std::min<std::size_t>(page.m_size / sizeof record, kPage));
  for (int i = 0; i < records; ++i) {
    std::memcpy(&record, page.m_bytes + static_cast<std::size_t>(i) * sizeof record, sizeof record);
    const ServerFile file = FileOf(record);
    // An incomplete page is all zeros.
    if (file.name.empty() || !take(file)) return 0;
  }
  return records;
}

}  // namespace

std::vector<SubStore> SubStoresLike(const std::string& pattern) {
  int count = 0;
  CZelkorSvrSubStoreInfo* const array = CRvoServer::GetSubStoreInfo(count, pattern.c_str());
  auto stores = Taken(array, count, SubStoreOf);
  TakeNamelessOut(stores);
  return stores;
}

FolderList FoldersIn(const std::string& path) {
  std::vector<ServerFolder> folders;
  AskUntilSomeCame([&] {
    int count = 0;
    CZelkorSvrFolderInfo* const array = CRvoFolder::GetChildFolderInfo(count, path.c_str());
    folders = Taken(array, count, FolderFrom);
    return !folders.empty();
  });
  const bool is_whole = TakeNamelessOut(folders) == 0;
  std::sort(folders.begin(), folders.end(),
            [](const ServerFolder& a, const ServerFolder& b) { return a.name < b.name; });
  return {std::move(folders), is_whole};
}

bool ForEachFile(const std::string& path, const std::string& pattern,
                 const std::function<bool(const ServerFile&)>& take) {
  constexpr int kLastStart = std::numeric_limits<int>::max() - kPage;
  for (int from = 0; from <= kLastStart;) {
    CQvRvoBuf page;
    int count = 0;
    const bool came = AskUntilSomeCame([&] {
      return CRvoFolderEx::GetMatchFilesInFolderEx(path.c_str(), pattern.c_str(), count, 0, 0, from,
                                                   from + kPage - 1, &page) == 1;
    });
    // Files may be removed while they are listed.
    if (!came) return from == 0 ? count == 0 : count > 0 && count <= from;
    const int taken = TakePage(page, take);
    if (taken == 0) return false;
    from += taken;
    if (from >= count) return true;
  }
  return false;
}

std::optional<ServerFile> FindFile(const std::string& path) {
  CZelkorSvrFileInfo record{};
  if (CRvoFile::GetFileInfor(path.c_str(), &record) != 1) return std::nullopt;
  return FileOf(record);
}

std::optional<ServerFolder> FindFolder(const std::string& path) {
  for (ServerFolder& folder : FoldersIn(std::string(FolderOf(path))).folders) {
    if (folder.name == LastPart(path)) return std::move(folder);
  }
  // The server lists no folders if there are too many beside this one.
  const bool has_folders = !FoldersIn(path).folders.empty();
  const bool has_files = !ForEachFile(path, kEveryFile, [](const ServerFile&) { return false; });
  if (!has_folders && !has_files) return std::nullopt;
  return ServerFolder{std::string(LastPart(path)), -1, has_folders};
}

}  // namespace qv::tool
