// The calls that both components have in common.
#pragma once

#include "ComObject.h"

namespace qv {

// A component as the queues use it: `Contract` is IQvCoFtp or IQvCoCSC, `Object` and `Table` are
// the COM object behind it. A call fails with E_OUTOFMEMORY if there is no memory for one of its
// texts.
template <class Contract, class Object, class Table>
class ComAdapter : public Contract {
 public:
  HRESULT FtpLogout(long* result) final { return component_.Call(&Table::FtpLogout, result); }
  HRESULT AddUploadFile(const char* first, const char* second) final {
    return component_.Call(&Table::AddUploadFile, first, second);
  }
  HRESULT AddDownloadFile(const char* first, const char* second) final {
    return component_.Call(&Table::AddDownloadFile, first, second);
  }
  HRESULT RenameServerFile(const char* old_path, const char* new_path, long* result) final {
    return component_.Call(&Table::RenameServerFile, old_path, new_path, result);
  }
  HRESULT DeleteServerFile(const char* path, long* result) final {
    return component_.Call(&Table::DeleteServerFile, path, result);
  }
  HRESULT DeleteServerPath(const char* path, long* result) final {
    return component_.Call(&Table::DeleteServerPath, path, result);
  }
  HRESULT IsOperatorFileSuc(const char* path, long* result) final {
    return component_.Call(&Table::IsOperatorFileSuc, path, result);
  }
  HRESULT AddCopyServerFile(const char* first, const char* second) final {
    return component_.Call(&Table::AddCopyServerFile, first, second);
  }
  HRESULT CopyServerFile(long option, long* count) final {
    return component_.Call(&Table::CopyServerFile, option, count);
  }
  HRESULT GetLastResult(long* result) final {
    return component_.Call(&Table::GetLastResult, result);
  }
  void Release() final { delete this; }

  IUnknown* Unknown() const { return component_.Unknown(); }

 protected:
  // Takes over the caller's reference.
  explicit ComAdapter(Object* object) : component_(object) {}
  virtual ~ComAdapter() = default;

  const ComReference<Object> component_;
};

}  // namespace qv
