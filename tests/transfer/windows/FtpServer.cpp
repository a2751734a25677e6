#include "ComServer.h"
#include "Registration.h"

namespace qv::test {
namespace {

// In the order of the table, whose first seven entries are those of IDispatch.
class FtpEntries : public IDispatch {
 public:
  virtual HRESULT STDMETHODCALLTYPE FtpLogin(BSTR a, short b, BSTR c, BSTR d, long* out) {
    return Heard("FtpLogin", out, a, b, c, d);
  }
  virtual HRESULT STDMETHODCALLTYPE AddUploadFile(BSTR a, BSTR b) {
    return Heard("AddUploadFile", nullptr, a, b);
  }
  virtual HRESULT STDMETHODCALLTYPE Entry9() { return Heard("Entry9", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE UploadFile(long a, long* out) {
    return Heard("UploadFile", out, a);
  }
  virtual HRESULT STDMETHODCALLTYPE Entry11() { return Heard("Entry11", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry12() { return Heard("Entry12", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry13() { return Heard("Entry13", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE AddDownloadFile(BSTR a, BSTR b) {
    return Heard("AddDownloadFile", nullptr, a, b);
  }
  virtual HRESULT STDMETHODCALLTYPE Entry15() { return Heard("Entry15", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE DownloadFile(long a, long b, long* out) {
    return Heard("DownloadFile", out, a, b);
  }
  virtual HRESULT STDMETHODCALLTYPE Entry17() { return Heard("Entry17", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE RenameServerFile(BSTR a, BSTR b, long* out) {
    return Heard("RenameServerFile", out, a, b);
  }
  virtual HRESULT STDMETHODCALLTYPE FtpLogout(long* out) { return Heard("FtpLogout", out); }
  virtual HRESULT STDMETHODCALLTYPE DeleteServerFile(BSTR a, long* out) {
    return Heard("DeleteServerFile", out, a);
  }
  virtual HRESULT STDMETHODCALLTYPE DeleteServerPath(BSTR a, long* out) {
    return Heard("DeleteServerPath", out, a);
  }
  virtual HRESULT STDMETHODCALLTYPE Entry22() { return Heard("Entry22", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry23() { return Heard("Entry23", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry24() { return Heard("Entry24", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry25() { return Heard("Entry25", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE IsOperatorFileSuc(BSTR a, long* out) {
    return HeardQuestion(a, out);
  }
  virtual HRESULT STDMETHODCALLTYPE Entry27() { return Heard("Entry27", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry28() { return Heard("Entry28", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry29() { return Heard("Entry29", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry30() { return Heard("Entry30", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry31() { return Heard("Entry31", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry32() { return Heard("Entry32", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE AddFtpServer(BSTR a, short b, BSTR c, BSTR d, long* out) {
    return Heard("AddFtpServer", out, a, b, c, d);
  }
  virtual HRESULT STDMETHODCALLTYPE Entry34() { return Heard("Entry34", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE AddCopyServerFile(BSTR a, BSTR b) {
    return Heard("AddCopyServerFile", nullptr, a, b);
  }
  virtual HRESULT STDMETHODCALLTYPE CopyServerFile(long a, long* out) {
    return Heard("CopyServerFile", out, a);
  }
  virtual HRESULT STDMETHODCALLTYPE GetLastResult(long* out) { return Heard("GetLastResult", out); }
  virtual HRESULT STDMETHODCALLTYPE Entry38() { return Heard("Entry38", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry39() { return Heard("Entry39", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry40() { return Heard("Entry40", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE SetTransModel1(long a) {
    return Heard("SetTransModel1", nullptr, a);
  }
  virtual HRESULT STDMETHODCALLTYPE SetTransModel2(long a) {
    return Heard("SetTransModel2", nullptr, a);
  }
};

}  // namespace

const ServerClass kServerClass{
    {0x5963B49F, 0xD05D, 0x48C5, {0x9D, 0x24, 0xF6, 0xC0, 0x90, 0x28, 0x10, 0x9A}},
    kFtpKey,
    {0xDDE4AECC, 0xCD9D, 0x4BF8, {0x8C, 0x71, 0xD8, 0x52, 0xAC, 0xBB, 0x2A, 0x7A}},
    [] { return static_cast<IUnknown*>(static_cast<IDispatch*>(new Scripted<FtpEntries>)); }};

}  // namespace qv::test
