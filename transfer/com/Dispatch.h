// The components as the system knows them: dual interfaces, whose method tables have a place for
// every entry. Only the named ones are called; the rest keep them where they are.
#pragma once

#include <windows.h>
// Behind it.
#include <oaidl.h>

namespace qv {

// Entry N of a method table that is not called.
#define QV_UNUSED_ENTRY(n) virtual HRESULT STDMETHODCALLTYPE Unused##n() = 0

struct FtpDispatch : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE FtpLogin(BSTR host, SHORT port, BSTR user, BSTR password,
                                             LONG* result) = 0;
  virtual HRESULT STDMETHODCALLTYPE AddUploadFile(BSTR first, BSTR second) = 0;
  QV_UNUSED_ENTRY(9);
  virtual HRESULT STDMETHODCALLTYPE UploadFile(LONG option, LONG* count) = 0;
  QV_UNUSED_ENTRY(11);
  QV_UNUSED_ENTRY(12);
  QV_UNUSED_ENTRY(13);
  virtual HRESULT STDMETHODCALLTYPE AddDownloadFile(BSTR first, BSTR second) = 0;
  QV_UNUSED_ENTRY(15);
  virtual HRESULT STDMETHODCALLTYPE DownloadFile(LONG one, LONG option, LONG* count) = 0;
  QV_UNUSED_ENTRY(17);
  virtual HRESULT STDMETHODCALLTYPE RenameServerFile(BSTR old_path, BSTR new_path,
                                                     LONG* result) = 0;
  virtual HRESULT STDMETHODCALLTYPE FtpLogout(LONG* result) = 0;
  virtual HRESULT STDMETHODCALLTYPE DeleteServerFile(BSTR path, LONG* result) = 0;
  virtual HRESULT STDMETHODCALLTYPE DeleteServerPath(BSTR path, LONG* result) = 0;
  QV_UNUSED_ENTRY(22);
  QV_UNUSED_ENTRY(23);
  QV_UNUSED_ENTRY(24);
  QV_UNUSED_ENTRY(25);
  virtual HRESULT STDMETHODCALLTYPE IsOperatorFileSuc(BSTR path, LONG* result) = 0;
  QV_UNUSED_ENTRY(27);
  QV_UNUSED_ENTRY(28);
  QV_UNUSED_ENTRY(29);
  QV_UNUSED_ENTRY(30);
  QV_UNUSED_ENTRY(31);
  QV_UNUSED_ENTRY(32);
  virtual HRESULT STDMETHODCALLTYPE AddFtpServer(BSTR host, SHORT port, BSTR user, BSTR password,
                                                 LONG* result) = 0;
  QV_UNUSED_ENTRY(34);
  virtual HRESULT STDMETHODCALLTYPE AddCopyServerFile(BSTR first, BSTR second) = 0;
  virtual HRESULT STDMETHODCALLTYPE CopyServerFile(LONG option, LONG* count) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetLastResult(LONG* result) = 0;
  QV_UNUSED_ENTRY(38);
  QV_UNUSED_ENTRY(39);
  QV_UNUSED_ENTRY(40);
  virtual HRESULT STDMETHODCALLTYPE SetTransModel1(LONG value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetTransModel2(LONG value) = 0;
};

struct CscDispatch : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE FtpLogin(BSTR host, SHORT port, BSTR user, BSTR password,
                                             LONG extra, LONG* result) = 0;
  virtual HRESULT STDMETHODCALLTYPE FtpLogout(LONG* result) = 0;
  virtual HRESULT STDMETHODCALLTYPE AddUploadFile(BSTR first, BSTR second) = 0;
  QV_UNUSED_ENTRY(10);
  QV_UNUSED_ENTRY(11);
  virtual HRESULT STDMETHODCALLTYPE UploadFile(LONG option, LONG constant, LONG* count) = 0;
  QV_UNUSED_ENTRY(13);
  QV_UNUSED_ENTRY(14);
  QV_UNUSED_ENTRY(15);
  QV_UNUSED_ENTRY(16);
  virtual HRESULT STDMETHODCALLTYPE AddDownloadFile(BSTR first, BSTR second) = 0;
  QV_UNUSED_ENTRY(18);
  virtual HRESULT STDMETHODCALLTYPE DownloadFile(LONG one, LONG option, LONG constant,
                                                 LONG* count) = 0;
  QV_UNUSED_ENTRY(20);
  virtual HRESULT STDMETHODCALLTYPE RenameServerFile(BSTR old_path, BSTR new_path,
                                                     LONG* result) = 0;
  virtual HRESULT STDMETHODCALLTYPE DeleteServerFile(BSTR path, LONG* result) = 0;
  virtual HRESULT STDMETHODCALLTYPE DeleteServerPath(BSTR path, LONG* result) = 0;
  virtual HRESULT STDMETHODCALLTYPE IsOperatorFileSuc(BSTR path, LONG* result) = 0;
  QV_UNUSED_ENTRY(25);
  QV_UNUSED_ENTRY(26);
  QV_UNUSED_ENTRY(27);
  QV_UNUSED_ENTRY(28);
  QV_UNUSED_ENTRY(29);
  QV_UNUSED_ENTRY(30);
  QV_UNUSED_ENTRY(31);
  QV_UNUSED_ENTRY(32);
  QV_UNUSED_ENTRY(33);
  virtual HRESULT STDMETHODCALLTYPE AddCopyServerFile(BSTR first, BSTR second) = 0;
  virtual HRESULT STDMETHODCALLTYPE CopyServerFile(LONG option, LONG* count) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetLastResult(LONG* result) = 0;
};

#undef QV_UNUSED_ENTRY

}  // namespace qv
