#include "CommandHandlers.h"

#include <optional>
#include <vector>

#include "Listings.h"
#include "base/text/Numbers.h"
#include "qvnetcall/standin/Records.h"

namespace qv::standin {

namespace {

constexpr std::size_t kMostRecords = kShortListing / sizeof(CZelkorSvrADObjInfo);

// A client's request has no room for more names.
constexpr std::size_t kMostNamed = 10'000;

constexpr std::int32_t kLastMode = 2;

constexpr std::string_view kNoWithText = "-3";

// Returns the next field if it is a whole decimal number.
std::optional<std::int32_t> Decimal(FieldReader& fields) {
  const auto text = fields.View();
  return text ? text::ParseNumber<std::int32_t>(*text) : std::nullopt;
}

// A Lister fills `found`; a Changer sets `number` to the identifier or the count.
using Lister = Outcome (*)(Directory&, FieldReader&, Directory::Entries& found);
using Changer = Outcome (*)(Directory&, FieldReader&, std::int32_t& number);

void Fail(Reply& reply, Outcome outcome) {
  if (outcome.code != ErrorCode::kNotPermitted) return Refuse(reply, std::move(outcome));
  reply.fields.Text(kNoWithText);
  reply.fields.Text(outcome.text);
  reply.outcome = std::move(outcome);
}

template <class Result>
Outcome Work(Services& services, Request& request,
             Outcome (*work)(Directory&, FieldReader&, Result&), Result& result) {
  const auto directory = services.data.OpenDirectory(request.limit);
  if (directory == nullptr)
    return {ErrorCode::kNoDatabase, "the directory cannot be opened", error::kInternal};
  return work(*directory, request.fields, result);
}

void Change(Services& services, Request& request, Reply& reply, Changer change) {
  std::int32_t number = 0;
  Outcome outcome = Work(services, request, change, number);
  if (!outcome.Ok()) return Fail(reply, std::move(outcome));
  reply.fields.Text(std::to_string(number));
}

// Returns false if a name is too long for a record.
bool AppendRecord(std::uint64_t kind, const Directory::Entry& entry, std::string& bytes) {
  namespace layout = records::directory;
  CZelkorSvrADObjInfo record;
  records::SetNumber(record, layout::kKind, kind);
  records::SetNumber(record, layout::kId, static_cast<std::uint64_t>(entry.id));
  if (!records::SetText(record, layout::kName, entry.name)) return false;
  if (!records::SetText(record, layout::kDisplayName, entry.display_name)) return false;
  bytes += RecordBytes(record);
  return true;
}

void List(Services& services, Request& request, Reply& reply, std::uint64_t kind, Lister list) {
  Directory::Entries found;
  Outcome outcome = Work(services, request, list, found);
  if (!outcome.Ok()) return Fail(reply, std::move(outcome));
  std::string bytes;
  for (const Directory::Entry& entry : found) {
    if (!AppendRecord(kind, entry, bytes)) {
      return Fail(reply, {ErrorCode::kAnswerLost, "a name in the directory is too long"});
    }
  }
  reply.fields.Text(std::to_string(found.size()));
  if (!bytes.empty()) reply.fields.Bytes(bytes);
}

// Calls a search of the directory with the text that the request holds.
template <auto kFind>
Outcome ForText(Directory& directory, FieldReader& fields, Directory::Entries& found) {
  const auto text = fields.View();
  return text ? (directory.*kFind)(*text, kMostRecords, found) : FieldMissing();
}

// Returns the users in a list that "," or ";" separate, without their domains and surrounding
// blanks.
std::vector<std::string_view> UsersIn(std::string_view list) {
  std::vector<std::string_view> users;
  while (!list.empty() && users.size() <= kMostNamed) {
    const std::size_t end = std::min(list.find_first_of(",;"), list.size());
    std::string_view user = list.substr(0, end);
    list.remove_prefix(std::min(end + 1, list.size()));
    const std::size_t first = user.find_first_not_of(' ');
    if (first == std::string_view::npos) continue;
    user = user.substr(first, user.find_last_not_of(' ') + 1 - first);
    users.push_back(user.substr(user.find_last_of("/\\") + 1));
  }
  return users;
}

}  // namespace

void ListGroups(Services& services, Request& request, Reply& reply) {
  List(services, request, reply, records::directory::kGroup, ForText<&Directory::FindGroups>);
}

void ListUsers(Services& services, Request& request, Reply& reply) {
  List(services, request, reply, records::directory::kUser,
       [](Directory& directory, FieldReader&, Directory::Entries& found) {
         return directory.FindUsers(kMostRecords, found);
       });
}

void ListGroupUsers(Services& services, Request& request, Reply& reply) {
  List(services, request, reply, records::directory::kUser, ForText<&Directory::FindUsersOf>);
}

void MakeDepartment(Services& services, Request& request, Reply& reply) {
  Change(services, request, reply, [](Directory& directory, FieldReader& fields, std::int32_t& id) {
    const auto number = Decimal(fields);
    return number ? directory.MakeDepartment(*number, id) : FieldMissing();
  });
}

void MakeGroup(Services& services, Request& request, Reply& reply) {
  Change(services, request, reply, [](Directory& directory, FieldReader& fields, std::int32_t& id) {
    const auto name = fields.View();
    const auto kind = Decimal(fields);
    const auto department = Decimal(fields);
    if (!name || !kind || !department) return FieldMissing();
    return directory.MakeGroup(*name, *kind, *department, id);
  });
}

void MakeUser(Services& services, Request& request, Reply& reply) {
  Change(services, request, reply, [](Directory& directory, FieldReader& fields, std::int32_t& id) {
    const auto name = fields.View();
    const auto display_name = fields.View();
    const auto mode = Decimal(fields);
    if (!name || !display_name || !mode) return FieldMissing();
    if (*mode < 0 || *mode > kLastMode) {
      return Outcome{ErrorCode::kMalformedRequest, "the mode must be 0 to 2"};
    }
    return directory.MakeUser(*name, *display_name, *mode, id);
  });
}

void AddUsersToGroup(Services& services, Request& request, Reply& reply) {
  Change(services, request, reply,
         [](Directory& directory, FieldReader& fields, std::int32_t& count) {
           const auto group = fields.View();
           const auto list = fields.View();
           if (!group || !list || !Decimal(fields)) return FieldMissing();
           const auto users = UsersIn(*list);
           if (users.size() > kMostNamed) {
             return Outcome{ErrorCode::kNotPermitted, "too many users at once"};
           }
           return directory.AddUsers(*group, users, count);
         });
}

}  // namespace qv::standin
