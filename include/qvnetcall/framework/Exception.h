#pragma once

#include <exception>

#include "qvnetcall/Export.h"

/// What every exception of the framework derives from. Thrown by value and caught by reference; an
/// object belongs to the thread that catches it.
class QVNETCALL_API CException : public std::exception {
 public:
  CException() noexcept = default;
  CException(const CException&) = default;
  CException& operator=(const CException&) = default;
  ~CException() override;

  /// A short English text, owned by the class (not to be freed).
  [[nodiscard]] const char* what() const noexcept override;
};
