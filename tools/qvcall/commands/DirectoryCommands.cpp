#include "Commands.h"

#include <fmt/ostream.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "qvnetcall/QvNetCall4.h"
#include "qvnetcall/standin/Records.h"
#include "tools/qvcall/files/StoreListing.h"
#include "tools/qvcall/output/DisplayText.h"
#include "tools/qvcall/progress/ProgressLine.h"
#include "tools/qvcall/session/Session.h"

namespace qv::tool {
namespace {

using Rows = std::vector<std::vector<std::string>>;

struct Entries {
  Rows rows;
  bool is_whole;
};

// Converts the records of an array, and frees it. Records that are missing from the reply are all
// zeros, and the array is null if there are more than any reply can hold.
Entries Taken(CZelkorSvrADObjInfo* array, int count) {
  const std::unique_ptr<CZelkorSvrADObjInfo[]> records(array);
  Rows rows;
  for (int i = 0; records != nullptr && i < count; ++i) {
    rows.push_back({std::to_string(records::Number(array[i], records::directory::kId)),
                    records::Text(array[i], records::directory::kName),
                    records::Text(array[i], records::directory::kDisplayName)});
  }
  const auto nameless = std::erase_if(rows, [](const auto& row) { return row[1].empty(); });
  return {std::move(rows), nameless == 0 && (records != nullptr || count <= 0)};
}

Entries Groups(const std::string& pattern) {
  int count = 0;
  CZelkorSvrADObjInfo* const array = CRvoAd::GetADGroupInfo(pattern.c_str(), count);
  return Taken(array, count);
}

Entries Users(const std::string& group) {
  int count = 0;
  CZelkorSvrADObjInfo* const array = group.empty()
                                         ? CRvoAd::GetADUserInfo(count)
                                         : CRvoAd::GetADGroupUserInfo(group.c_str(), count);
  return Taken(array, count);
}

int Show(const Session& session, const Entries& entries, const char* one, const char* more,
         std::ostream& out, std::ostream& err) {
  const auto& [rows, is_whole] = entries;
  if (rows.empty() && !session.Probe()) {
    session.PrintRefusal(Call::kLook, {}, err);
    return kFailed;
  }
  WriteColumns(rows, out);
  if (!out.flush()) return kFailed;
  fmt::print(err, "({} {})\n", rows.size(), rows.size() == 1 ? one : more);
  if (is_whole) return kDone;
  fmt::print(err, "qvcall: the list is incomplete\n");
  return kFailed;
}

// The meaning that the stand-in server gives to the values; other servers may differ.
Rows Described(const CQvNetExeInfo& info) {
  const auto text = [](const CString& value) { return std::string(value.View()); };
  const auto yes = [](int value) { return std::string(value != 0 ? "yes" : "no"); };
  return {{"program", text(info.m_text1)},
          {"version", std::to_string(info.m_number2)},
          {"address", fmt::format("{}:{}", text(info.m_server), info.m_port)},
          {"store", text(info.m_text3)},
          {"lists in pages", yes(info.m_number6)},
          {"checksums", yes(info.m_number7)},
          {"names in", text(info.m_text8)},
          {"remark", text(info.m_text9)}};
}

}  // namespace

int Run(const ConnectionOptions& connection, const ListGroups& command, std::ostream& out,
        std::ostream& err) {
  Session session(connection, "", Session::Calls::kOverSocket);
  if (!session.Start(err)) return kFailed;
  return Show(session, Groups(command.pattern), "group", "groups", out, err);
}

int Run(const ConnectionOptions& connection, const ListUsers& command, std::ostream& out,
        std::ostream& err) {
  Session session(connection, "", Session::Calls::kOverSocket);
  if (!session.Start(err)) return kFailed;
  const Entries users = Users(command.group);
  // A server that gives no reasons answers for a group without users as for one that does not
  // exist.
  const bool is_refused = session.LastReason().error_class != error::kNone;
  if (users.rows.empty() && !command.group.empty() &&
      (is_refused || Groups(command.group).rows.empty())) {
    session.PrintRefusal(Call::kLookInside, command.group, err);
    return kFailed;
  }
  return Show(session, users, "user", "users", out, err);
}

int Run(const ConnectionOptions& connection, const WriteLog& command, std::ostream& /*out*/,
        std::ostream& err) {
  Session session(connection, "", Session::Calls::kOverSocket);
  if (!session.Start(err)) return kFailed;
  if (CRvoServer::SendSvrLogInfo(command.kind, command.text.c_str()) == 1) {
    fmt::print(err, "done\n");
    return kDone;
  }
  session.PrintRefusal(Call::kLog, {}, err);
  return kFailed;
}

int Run(const ConnectionOptions& connection, const ShowServer& /*command*/, std::ostream& out,
        std::ostream& err) {
  Session session(connection, "", Session::Calls::kOverSocket);
  if (!session.Start(err)) return kFailed;
  CQvNetExeInfo info;
  if (CRvoServer::GetQvNetExeInfo(&info) != 1) {
    session.PrintRefusal(Call::kLook, {}, err);
    return kFailed;
  }
  Rows rows = Described(info);
  for (const SubStore& store : SubStoresLike("*")) {
    rows.push_back({"sub-store", fmt::format("{}  ({} free)", store.name, SizeText(store.free))});
  }
  WriteColumns(rows, out);
  return kDone;
}

}  // namespace qv::tool
