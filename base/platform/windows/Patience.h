// What fails for a moment: a file cannot be replaced while anybody has it open, be it another
// thread that replaces it as well, or what looks into every new file on the machine.
#pragma once

#include <windows.h>

namespace qv::platform {

// Makes attempts, which give the system's error or ERROR_SUCCESS, until one succeeds or fails for
// another reason than that; for a quarter of a second at most. Whether the last one succeeded.
template <class Attempt>
bool Patiently(const Attempt& attempt) {
  constexpr DWORD kLongestPause = 128;  // milliseconds
  for (DWORD pause = 1;; pause *= 2) {
    const DWORD error = attempt();
    const bool may_pass = error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION;
    if (!may_pass || pause > kLongestPause) return error == ERROR_SUCCESS;
    ::Sleep(pause);
  }
}

}  // namespace qv::platform
