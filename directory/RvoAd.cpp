#include "qvnetcall/RvoAd.h"

#include "base/call/LastError.h"
#include "qvnetcall/ResultCodes.h"
#include "server/CatalogueCall.h"

using qv::CatalogueCall;
using qv::CatalogueCommand;

namespace {

// Commands; request fields, with numbers as decimal texts; reply fields after the number.
constexpr CatalogueCommand kGroups{6015};         // key; records
constexpr CatalogueCommand kGroupUsers{6016};     // group; records
constexpr CatalogueCommand kNewDepartment{6017};  // number
constexpr CatalogueCommand kNewGroup{6018};       // group, two numbers
constexpr CatalogueCommand kAddToGroup{6019};     // group, users, number
constexpr CatalogueCommand kUsers{6020};          // none; records
constexpr CatalogueCommand kNewUser{6021};        // two texts, mode

// The answer that is followed by an error text.
constexpr std::int32_t kRefusedWithText = -3;

constexpr int kLastUserMode = 2;

CString Decimal(int number) {
  CString text;
  text.Format("%d", number);
  return text;
}

// Returns the answer if it is above zero, else 0. One below `least` is a refusal.
std::int32_t Ask(CatalogueCall& call, std::int32_t least) {
  const std::int32_t answer = call.Ask().value_or(0);
  const CString why = answer == kRefusedWithText ? call.Text() : CString();
  if (answer < least) return qv::Refused(0, why.View());
  return answer;
}

template <class... Fields>
int Change(const CatalogueCommand& command, const Fields&... fields) {
  CatalogueCall call(command, fields...);
  return Ask(call, 1);
}

template <class... Fields>
CZelkorSvrADObjInfo* Read(int& count, const CatalogueCommand& command, const Fields&... fields) {
  CatalogueCall call(command, fields...);
  const std::int32_t found = Ask(call, 0);
  if (found == 0) return nullptr;
  count = found;
  return call.ReadRecords<CZelkorSvrADObjInfo>(found);
}

}  // namespace

CZelkorSvrADObjInfo* CRvoAd::GetADGroupInfo(CString key, int& count) {
  count = 0;
  return Read(count, kGroups, key);
}

CZelkorSvrADObjInfo* CRvoAd::GetADGroupUserInfo(CString group, int& count) {
  count = 0;
  return Read(count, kGroupUsers, group);
}

// Unlike the calls for groups, this leaves `count` unchanged if there are no records.
CZelkorSvrADObjInfo* CRvoAd::GetADUserInfo(int& count) { return Read(count, kUsers); }

int CRvoAd::CreateADDepart(int value) { return Change(kNewDepartment, Decimal(value)); }

int CRvoAd::AddADGroup(CString group, int value1, int value2) {
  return Change(kNewGroup, group, Decimal(value1), Decimal(value2));
}

int CRvoAd::AddADGroupUsers(CString group, CString users, int value) {
  users.Replace('\\', '/');
  return Change(kAddToGroup, group, users, Decimal(value));
}

int CRvoAd::AddADUser(CString first, CString second, int mode) {
  if (mode < 0 || mode > kLastUserMode) {
    qv::call::SetError(qv::error::kLocal, "there is no such mode of a new user");
    return 0;
  }
  return Change(kNewUser, first, second, Decimal(mode));
}
