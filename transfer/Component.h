// How components come into being and how their failures reach the host; each system has its own
// way.
#pragma once

#include "qvnetcall/transfer/ComError.h"

class IQvCoCSC;
class IQvCoFtp;

namespace qv {

inline constexpr GUID kFtpInterface{
    0xDDE4AECC, 0xCD9D, 0x4BF8, {0x8C, 0x71, 0xD8, 0x52, 0xAC, 0xBB, 0x2A, 0x7A}};
inline constexpr GUID kCscInterface{
    0x90302F64, 0xB9C6, 0x471A, {0xAF, 0x28, 0x5D, 0xE9, 0x53, 0xCF, 0x55, 0x06}};

// Enter and leave the single-threaded apartment of the calling thread, where the system has one.
// Components are made inside; the one of a cloud object is ended after its apartment was left.
void EnterApartment();
void LeaveApartment();

// A new object, which the caller ends with Release; null when the component cannot be had. Nothing
// is remembered of a failure.
[[nodiscard]] IQvCoFtp* CreateFtpComponent();
[[nodiscard]] IQvCoCSC* CreateCscComponent();

// Throw _com_error for a call that failed with `error`, which is negative.
[[noreturn]] void RaiseComError(HRESULT error, IQvCoFtp* component);
[[noreturn]] void RaiseComError(HRESULT error, IQvCoCSC* component);

}  // namespace qv
