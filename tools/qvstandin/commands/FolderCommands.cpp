#include "CommandHandlers.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "Listings.h"
#include "qvnetcall/ServerRecords.h"

namespace qv::standin {

namespace {

using platform::Entry;
using platform::EntryKind;

constexpr std::string_view kEvery = "*";

// Returns the next field, or `otherwise` if there is none: clients cannot write an empty field.
std::optional<std::string> TextOr(FieldReader& fields, std::string_view otherwise) {
  return fields.AtEnd() ? std::string(otherwise) : fields.Text();
}

struct Selection {
  std::string folder;
  std::string pattern;
  bool is_reversed = false;
};

// Without a folder's name, the request means the top folder.
std::optional<Selection> ReadSelection(FieldReader& fields) {
  std::vector<std::string> texts;
  while (texts.size() < 3) {
    auto text = fields.Text();
    if (!text) break;
    texts.push_back(std::move(*text));
  }
  if (texts.size() == 2) texts.emplace(texts.begin(), FileStore::kTop);
  if (texts.size() != 3) return std::nullopt;
  return Selection{texts[0], texts[1], texts[2] == kYes};
}

Outcome Select(Services& services, const Selection& selection, ListingOrder order, WorkLimit& limit,
               std::vector<Entry>& files) {
  Outcome listed = services.data.Files().List(selection.folder, EntryKind::kFile, selection.pattern,
                                              limit, files);
  if (listed.Ok()) SortListing(files, order, selection.is_reversed);
  return listed;
}

Outcome SelectFolders(Services& services, std::string_view folder, std::string_view pattern,
                      WorkLimit& limit, std::vector<Entry>& folders) {
  Outcome listed = services.data.Files().List(folder, EntryKind::kFolder, pattern, limit, folders);
  if (listed.Ok()) SortListing(folders, ListingOrder::kByName, false);
  return listed;
}

// Sends a listing entirely or not at all: a client could not recognise a partial one.
void AnswerRecords(Reply& reply, std::size_t count, std::string_view records, std::uint64_t room) {
  if (records.size() > room) {
    return Refuse(reply, {ErrorCode::kAnswerLost, "the listing is larger than a reply can hold",
                          error::kTooLarge});
  }
  reply.fields.Text(std::to_string(count));
  if (count != 0) reply.fields.Bytes(records);
}

struct Range {
  ListingOrder order = ListingOrder::kByName;
  std::size_t from = 0;
  std::size_t end = 0;  // one past the last
};

std::optional<Range> ReadRange(FieldReader& fields) {
  constexpr std::int32_t kToTheEnd = -1;
  const auto option = fields.Integer();
  const auto from = option ? fields.Integer() : std::nullopt;
  const auto to = from ? fields.Integer() : std::nullopt;
  if (!to || *option < 0 || *option > static_cast<int>(ListingOrder::kLargestFirst) || *from < 0 ||
      (*to != kToTheEnd && *to < *from)) {
    return std::nullopt;
  }
  const auto end = *to == kToTheEnd ? std::numeric_limits<std::size_t>::max()
                                    : static_cast<std::size_t>(*to) + 1;
  return Range{static_cast<ListingOrder>(*option), static_cast<std::size_t>(*from), end};
}

// Returns the files in the range, as many as a reply can hold; the client sees from their number
// where to continue.
std::span<const Entry> PageOf(const std::vector<Entry>& files, const Range& range) {
  constexpr std::size_t kMost = kLongListing / sizeof(CZelkorSvrFileInfo);
  const std::size_t from = std::min(range.from, files.size());
  const std::size_t end = std::min(range.end, files.size());
  return std::span(files).subspan(from, std::min(end - from, kMost));
}

}  // namespace

void ListFolders(Services& services, Request& request, Reply& reply) {
  const auto folder = TextOr(request.fields, FileStore::kTop);
  if (!folder) return Refuse(reply, FieldMissing());
  reply.database = *folder;
  std::vector<Entry> folders;
  std::vector<bool> are_parents;
  Outcome outcome = SelectFolders(services, *folder, kEvery, request.limit, folders);
  if (outcome.Ok()) {
    outcome = services.data.Files().FindParents(*folder, folders, request.limit, are_parents);
  }
  if (!outcome.Ok()) return Refuse(reply, std::move(outcome));
  AnswerRecords(reply, folders.size(), FolderRecords(folders, are_parents), kLongListing);
}

void ListFiles(Services& services, Request& request, Reply& reply) {
  const auto selection = ReadSelection(request.fields);
  if (!selection) return Refuse(reply, FieldMissing());
  reply.database = selection->folder;
  std::vector<Entry> files;
  Outcome outcome = Select(services, *selection, ListingOrder::kByName, request.limit, files);
  if (!outcome.Ok()) return Refuse(reply, std::move(outcome));
  AnswerRecords(reply, files.size(), FileRecords(files), kShortListing);
}

void ListPage(Services& services, Request& request, Reply& reply) {
  const auto selection = ReadSelection(request.fields);
  const auto range = selection ? ReadRange(request.fields) : std::nullopt;
  if (!range) return Refuse(reply, {ErrorCode::kMalformedRequest, "no selection, or no range"});
  reply.database = selection->folder;
  std::vector<Entry> files;
  Outcome outcome = Select(services, *selection, range->order, request.limit, files);
  // If there are too many files, the reply has their number but no page: "0" would mean an empty
  // folder.
  const bool has_page = outcome.Ok();
  if (!has_page && outcome.code != ErrorCode::kAnswerLost) {
    return Refuse(reply, std::move(outcome));
  }
  reply.outcome = std::move(outcome);
  reply.fields.Text(std::to_string(files.size()));
  if (files.empty()) return;
  const std::string page = has_page ? FileRecords(PageOf(files, *range)) : "";
  reply.fields.Text(std::to_string(page.size()));
  if (!page.empty()) reply.fields.Bytes(page);
}

void MakeFolder(Services& services, Request& request, Reply& reply) {
  const auto path = request.fields.Text();
  if (!path) return Refuse(reply, FieldMissing());
  reply.database = *path;
  AnswerYesOrNo(reply, services.data.Files().MakeFolder(*path));
}

void DeleteFolder(Services& services, Request& request, Reply& reply) {
  const auto path = request.fields.Text();
  if (!path) return Refuse(reply, FieldMissing());
  reply.database = *path;
  AnswerYesOrNo(reply, services.data.Files().DeleteFolder(*path));
}

void ListSubStores(Services& services, Request& request, Reply& reply) {
  const auto pattern = TextOr(request.fields, kEvery);
  if (!pattern) return Refuse(reply, FieldMissing());
  std::vector<Entry> folders;
  Outcome outcome = SelectFolders(services, FileStore::kTop, *pattern, request.limit, folders);
  if (!outcome.Ok()) return Refuse(reply, std::move(outcome));
  AnswerRecords(reply, folders.size(), SubStoreRecords(folders, services.data.Files().FreeBytes()),
                kShortListing);
}

}  // namespace qv::standin
