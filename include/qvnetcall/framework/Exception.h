#pragma once

#include <exception>

#include "qvnetcall/Export.h"

/// The base class of the framework's exceptions. They are thrown by value and caught by reference;
/// an object belongs to the thread that catches it.
class QVNETCALL_API CException : public std::exception {
 public:
  CException() noexcept = default;
  CException(const CException&) = default;
  CException& operator=(const CException&) = default;
  ~CException() override;

  /// Returns a short English text. The class owns it; do not free it.
  [[nodiscard]] const char* what() const noexcept override;
};
