#pragma once

#include "qvnetcall/framework/Exception.h"

/// Thrown if a collection or a text is given an index, size or count that it cannot accept.
class QVNETCALL_API CInvalidArgException : public CException {
 public:
  CInvalidArgException() noexcept = default;
  CInvalidArgException(const CInvalidArgException&) = default;
  CInvalidArgException& operator=(const CInvalidArgException&) = default;
  ~CInvalidArgException() override;

  /// Returns a short English text. The class owns it; do not free it.
  [[nodiscard]] const char* what() const noexcept override;
};

/// Throws CInvalidArgException. Any thread may call it.
[[noreturn]] QVNETCALL_API void AfxThrowInvalidArgException();
