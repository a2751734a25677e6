// Access rights of objects that are created for their owner only.
#pragma once

#include <windows.h>

namespace qv::platform {

enum class Inherit { kNot, kToContents };

// Rights that admit only this user, the system and its administrators, and inherit nothing from the
// folder above.
class OwnerOnly {
 public:
  // Leaves the rights missing, with GetLastError set, if the system does not tell who this user is
  // or memory is short.
  explicit OwnerOnly(Inherit inherit);
  ~OwnerOnly();
  OwnerOnly(const OwnerOnly&) = delete;
  OwnerOnly& operator=(const OwnerOnly&) = delete;

  [[nodiscard]] bool IsMissing() const { return attributes_.lpSecurityDescriptor == nullptr; }
  // Pass to Create* calls. Precondition: !IsMissing(); a null descriptor would silently inherit the
  // parent folder's rights.
  [[nodiscard]] SECURITY_ATTRIBUTES* Attributes() { return &attributes_; }
  // Assigns these rights to an open object, whose handle needs WRITE_DAC.
  [[nodiscard]] bool GiveTo(HANDLE object) const;

 private:
  SECURITY_ATTRIBUTES attributes_{};
};

// Returns true if only the owner, this user, the system and its administrators have any right to an
// open object.
[[nodiscard]] bool IsOwnerOnly(HANDLE object);

}  // namespace qv::platform
