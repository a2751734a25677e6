#include "qvnetcall/RvoFolder.h"

#include "FolderListing.h"
#include "Offline.h"
#include "server/CatalogueCall.h"

using qv::CatalogueCall;
using qv::CatalogueCommand;

namespace {

// Commands; request fields; reply fields behind the number.
constexpr CatalogueCommand kChildFolders{6001, qv::kLargeCatalogueReply};  // text folder; records
constexpr CatalogueCommand kMatchingFiles{6002};  // texts folder, pattern, flag; records
constexpr CatalogueCommand kNewFolder{6003};      // text folder
constexpr CatalogueCommand kDeleteFolder{6004};   // text folder
constexpr CatalogueCommand kRenameFolder{6005};   // texts old, new; the command that renames files

// Offline, a change is taken to be done.
template <class... Texts>
int Change(const CatalogueCommand& command, const Texts&... texts) {
  if (qv::NetworkIsHeldForBad()) return 1;
  return CatalogueCall(command, texts...).Ask().value_or(0) > 0 ? 1 : 0;
}

}  // namespace

CZelkorSvrFileInfo* CRvoFolder::GetMatchFilesInFolder(CString folder, CString pattern, int& count,
                                                      int flag) {
  if (qv::NetworkIsHeldForBad()) return nullptr;
  count = 0;
  CatalogueCall call(kMatchingFiles, folder, pattern, qv::FlagText(flag));
  return call.AskRecords<CZelkorSvrFileInfo>(count);
}

CZelkorSvrFileInfo* CRvoFolder::GetFilesInFolder(CString folder, int& count, int flag) {
  return GetMatchFilesInFolder(folder, qv::kEveryFile, count, flag);
}

// Unlike the listing of files it leaves `count` alone when there is nothing.
CZelkorSvrFolderInfo* CRvoFolder::GetChildFolderInfo(int& count, CString folder) {
  if (qv::NetworkIsHeldForBad()) return nullptr;
  CatalogueCall call(kChildFolders, folder);
  return call.AskRecords<CZelkorSvrFolderInfo>(count);
}

int CRvoFolder::NewOneFolder(CString folder) { return Change(kNewFolder, folder); }

int CRvoFolder::DelOneFolder(CString folder) { return Change(kDeleteFolder, folder); }

int CRvoFolder::RenOneFolder(CString old_folder, CString new_folder) {
  return Change(kRenameFolder, old_folder, new_folder);
}
