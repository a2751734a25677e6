#include "OwnerOnly.h"

#include <aclapi.h>
#include <sddl.h>

#include <memory>
#include <new>

namespace qv::platform {

namespace {

// The owner, the system, the administrators: everything. Nothing comes from the folder above.
constexpr const char kRights[] = "D:P(A;;FA;;;OW)(A;;FA;;;SY)(A;;FA;;;BA)";
constexpr const char kInheritedRights[] = "D:P(A;OICI;FA;;;OW)(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)";

struct LocalFreer {
  void operator()(void* memory) const { ::LocalFree(memory); }
};

bool IsTrusted(PSID who, PSID owner) {
  return ::EqualSid(who, owner) != FALSE || ::IsWellKnownSid(who, WinCreatorOwnerRightsSid) ||
         ::IsWellKnownSid(who, WinLocalSystemSid) ||
         ::IsWellKnownSid(who, WinBuiltinAdministratorsSid);
}

// Whether an entry gives nothing to anybody else. Of a kind that is not known here it might.
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
  const char* const rights = inherit == Inherit::kNot ? kRights : kInheritedRights;
  const BOOL made = ::ConvertStringSecurityDescriptorToSecurityDescriptorA(
      rights, SDDL_REVISION_1, &attributes_.lpSecurityDescriptor, nullptr);
  if (made == FALSE) throw std::bad_alloc();  // what else can be wrong with a constant
}

OwnerOnly::~OwnerOnly() { ::LocalFree(attributes_.lpSecurityDescriptor); }

bool OwnerOnly::GiveTo(HANDLE object) const {
  BOOL present = FALSE;
  BOOL defaulted = FALSE;
  PACL rights = nullptr;
  ::GetSecurityDescriptorDacl(attributes_.lpSecurityDescriptor, &present, &rights, &defaulted);
  const SECURITY_INFORMATION what = DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION;
  return ::SetSecurityInfo(object, SE_FILE_OBJECT, what, nullptr, nullptr, rights, nullptr) ==
         ERROR_SUCCESS;
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
  if (rights == nullptr || owner == nullptr) return false;  // no list is everything to everybody
  for (DWORD i = 0; i < rights->AceCount; ++i) {
    void* entry = nullptr;
    if (::GetAce(rights, i, &entry) == FALSE) return false;
    if (!IsHarmless(*static_cast<const ACE_HEADER*>(entry), owner)) return false;
  }
  return true;
}

}  // namespace qv::platform
