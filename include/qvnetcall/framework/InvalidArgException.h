#pragma once

#include "qvnetcall/framework/Exception.h"

/// An index, size or count that a collection or text cannot accept.
class QVNETCALL_API CInvalidArgException : public CException {
 public:
  CInvalidArgException() noexcept = default;
  CInvalidArgException(const CInvalidArgException&) = default;
  CInvalidArgException& operator=(const CInvalidArgException&) = default;
  ~CInvalidArgException() override;

  [[nodiscard]] const char* what() const noexcept override;
};

/// Throws CInvalidArgException. May be called from any thread.
[[noreturn]] QVNETCALL_API void AfxThrowInvalidArgException();
