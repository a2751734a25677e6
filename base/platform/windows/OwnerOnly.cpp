#include "OwnerOnly.h"

#include <aclapi.h>
#include <sddl.h>

#include <memory>
#include <string>

namespace qv::platform {

namespace {

// Space for a record with one identifier of the longest kind.
struct TokenOwner {
  TOKEN_USER user;
  BYTE room[SECURITY_MAX_SID_SIZE];
};

struct LocalFreer {
  void operator()(void* memory) const { ::LocalFree(memory); }
};

// The user that this program runs as. Objects made by an administrator are owned by the
// Administrators group, so OWNER RIGHTS would not identify this user.
[[nodiscard]] bool FindUser(TokenOwner* found) {
  DWORD length = 0;
  return ::GetTokenInformation(::GetCurrentProcessToken(), TokenUser, found, sizeof *found,
                               &length) != FALSE;
}

// Grants the user, the system and the administrators everything, and inherits nothing from the
// folder above. Returns an empty text if the system does not tell who the user is.
std::string Rights(Inherit inherit) {
  TokenOwner token{};
  char* user = nullptr;
  if (!FindUser(&token) || ::ConvertSidToStringSidA(token.user.User.Sid, &user) == FALSE) return {};
  const std::unique_ptr<void, LocalFreer> kept(user);
  const std::string entry = inherit == Inherit::kNot ? "(A;;FA;;;" : "(A;OICI;FA;;;";
  return "D:P" + entry + user + ")" + entry + "SY)" + entry + "BA)";
}

bool IsTrusted(PSID who, PSID owner) {
  TokenOwner token{};
  return ::EqualSid(who, owner) != FALSE || ::IsWellKnownSid(who, WinLocalSystemSid) ||
         ::IsWellKnownSid(who, WinBuiltinAdministratorsSid) ||
         (FindUser(&token) && ::EqualSid(who, token.user.User.Sid) != FALSE);
}

// Returns true if an entry grants nothing to anybody else. An entry of an unknown kind might.
bool IsHarmless(const ACE_HEADER& entry, PSID owner) {
  if (entry.AceType == ACCESS_DENIED_ACE_TYPE || (entry.AceFlags & INHERIT_ONLY_ACE) != 0) {
    return true;
  }
  if (entry.AceType != ACCESS_ALLOWED_ACE_TYPE) return false;
  const auto& allowed = reinterpret_cast<const ACCESS_ALLOWED_ACE&>(entry);
  return IsTrusted(const_cast<DWORD*>(&allowed.SidStart), owner);
}

}  // namespace

OwnerOnly::OwnerOnly(Inherit inherit) {
  attributes_.nLength = sizeof attributes_;
  const std::string rights = Rights(inherit);
  if (rights.empty()) return;
  if (::ConvertStringSecurityDescriptorToSecurityDescriptorA(
          rights.c_str(), SDDL_REVISION_1, &attributes_.lpSecurityDescriptor, nullptr) == FALSE) {
    attributes_.lpSecurityDescriptor = nullptr;
  }
}

OwnerOnly::~OwnerOnly() { ::LocalFree(attributes_.lpSecurityDescriptor); }

bool OwnerOnly::GiveTo(HANDLE object) const {
  return ::SetKernelObjectSecurity(object, DACL_SECURITY_INFORMATION,
                                   attributes_.lpSecurityDescriptor) != FALSE;
}

bool IsOwnerOnly(HANDLE object) {
  PSID owner = nullptr;
  PACL rights = nullptr;
  PSECURITY_DESCRIPTOR all = nullptr;
  const DWORD failed = ::GetSecurityInfo(object, SE_FILE_OBJECT,
                                         OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION,
                                         &owner, nullptr, &rights, nullptr, &all);
  if (failed != ERROR_SUCCESS) return false;
  const std::unique_ptr<void, LocalFreer> kept(all);
  if (rights == nullptr || owner == nullptr) return false;  // without a list all may do everything
  for (DWORD i = 0; i < rights->AceCount; ++i) {
    void* entry = nullptr;
    if (::GetAce(rights, i, &entry) == FALSE) return false;
    if (!IsHarmless(*static_cast<const ACE_HEADER*>(entry), owner)) return false;
  }
  return true;
}

}  // namespace qv::platform
