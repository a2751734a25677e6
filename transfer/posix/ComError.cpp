#include "qvnetcall/transfer/ComError.h"

#include <cstdio>

_com_error::_com_error(HRESULT error, void* component, const ::GUID& iid) noexcept
    : error_(error), component_(component), iid_(iid) {
  std::snprintf(message_, sizeof message_, "Call failed: 0x%08X", static_cast<unsigned>(error));
}

_com_error::_com_error(const _com_error&) noexcept = default;
_com_error& _com_error::operator=(const _com_error&) noexcept = default;
_com_error::~_com_error() noexcept = default;

std::uint16_t _com_error::WCode() const noexcept {
  constexpr std::uint32_t kFirst = 0x80040200;
  constexpr std::uint32_t kLast = 0x8004FFFF;
  const auto error = static_cast<std::uint32_t>(error_);
  return error >= kFirst && error <= kLast ? static_cast<std::uint16_t>(error - kFirst) : 0;
}
