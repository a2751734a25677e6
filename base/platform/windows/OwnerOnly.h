// Who may touch what is made for its owner only.
#pragma once

#include <windows.h>

namespace qv::platform {

enum class Inherit { kNot, kToContents };

// The rights of an object that only this user, the system and its administrators reach, whatever
// the folder above would hand down.
class OwnerOnly {
 public:
  // They are missing when the system does not say who this user is, or memory is short;
  // GetLastError tells.
  explicit OwnerOnly(Inherit inherit);
  ~OwnerOnly();
  OwnerOnly(const OwnerOnly&) = delete;
  OwnerOnly& operator=(const OwnerOnly&) = delete;

  [[nodiscard]] bool IsMissing() const { return attributes_.lpSecurityDescriptor == nullptr; }
  // To create with, unless they are missing; null rights, which would mean those of the folder
  // above, are never in it.
  [[nodiscard]] SECURITY_ATTRIBUTES* Attributes() { return &attributes_; }
  // Gives an open object these rights; its handle needs WRITE_DAC.
  [[nodiscard]] bool GiveTo(HANDLE object) const;

 private:
  SECURITY_ATTRIBUTES attributes_{};
};

// Whether nobody but its owner, this user, the system and its administrators has any right to an
// open object.
[[nodiscard]] bool IsOwnerOnly(HANDLE object);

}  // namespace qv::platform
