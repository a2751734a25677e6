// How components are created and how their failures reach the host; each system has its own way.
#pragma once

#include "qvnetcall/transfer/ComError.h"

class IQvCoCSC;
class IQvCoFtp;

namespace qv {

inline constexpr GUID kFtpInterface{
    0xDDE4AECC, 0xCD9D, 0x4BF8, {0x8C, 0x71, 0xD8, 0x52, 0xAC, 0xBB, 0x2A, 0x7A}};
inline constexpr GUID kCscInterface{
    0x90302F64, 0xB9C6, 0x471A, {0xAF, 0x28, 0x5D, 0xE9, 0x53, 0xCF, 0x55, 0x06}};

// Enter and leave the single-threaded apartment of the calling thread, on systems that have one.
// Components are created inside it; that of a cloud object is released after its apartment was
// left.
void EnterApartment();
void LeaveApartment();

// Returns a new object, which the caller releases with Release, or null if the component is not
// available. A failure is not remembered.
[[nodiscard]] IQvCoFtp* CreateFtpComponent();
[[nodiscard]] IQvCoCSC* CreateCscComponent();

// Throw _com_error for a call that failed with `error` < 0.
[[noreturn]] void RaiseComError(HRESULT error, IQvCoFtp* component);
[[noreturn]] void RaiseComError(HRESULT error, IQvCoCSC* component);

}  // namespace qv
