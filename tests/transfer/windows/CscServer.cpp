#include "ComServer.h"
#include "Registration.h"

namespace qv::test {
namespace {

// In the order of the table, whose first seven entries are those of IDispatch.
class CscEntries : public IDispatch {
 public:
  virtual HRESULT STDMETHODCALLTYPE FtpLogin(BSTR a, short b, BSTR c, BSTR d, long e, long* out) {
    return Heard("FtpLogin", out, a, b, c, d, e);
  }
  virtual HRESULT STDMETHODCALLTYPE FtpLogout(long* out) { return Heard("FtpLogout", out); }
  virtual HRESULT STDMETHODCALLTYPE AddUploadFile(BSTR a, BSTR b) {
    return Heard("AddUploadFile", nullptr, a, b);
  }
  virtual HRESULT STDMETHODCALLTYPE Entry10() { return Heard("Entry10", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry11() { return Heard("Entry11", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE UploadFile(long a, long b, long* out) {
    return Heard("UploadFile", out, a, b);
  }
  virtual HRESULT STDMETHODCALLTYPE Entry13() { return Heard("Entry13", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry14() { return Heard("Entry14", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry15() { return Heard("Entry15", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry16() { return Heard("Entry16", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE AddDownloadFile(BSTR a, BSTR b) {
    return Heard("AddDownloadFile", nullptr, a, b);
  }
  virtual HRESULT STDMETHODCALLTYPE Entry18() { return Heard("Entry18", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE DownloadFile(long a, long b, long c, long* out) {
    return Heard("DownloadFile", out, a, b, c);
  }
  virtual HRESULT STDMETHODCALLTYPE Entry20() { return Heard("Entry20", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE RenameServerFile(BSTR a, BSTR b, long* out) {
    return Heard("RenameServerFile", out, a, b);
  }
  virtual HRESULT STDMETHODCALLTYPE DeleteServerFile(BSTR a, long* out) {
    return Heard("DeleteServerFile", out, a);
  }
  virtual HRESULT STDMETHODCALLTYPE DeleteServerPath(BSTR a, long* out) {
    return Heard("DeleteServerPath", out, a);
  }
  virtual HRESULT STDMETHODCALLTYPE IsOperatorFileSuc(BSTR a, long* out) {
    return HeardQuestion(a, out);
  }
  virtual HRESULT STDMETHODCALLTYPE Entry25() { return Heard("Entry25", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry26() { return Heard("Entry26", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry27() { return Heard("Entry27", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry28() { return Heard("Entry28", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry29() { return Heard("Entry29", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry30() { return Heard("Entry30", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry31() { return Heard("Entry31", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry32() { return Heard("Entry32", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry33() { return Heard("Entry33", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE AddCopyServerFile(BSTR a, BSTR b) {
    return Heard("AddCopyServerFile", nullptr, a, b);
  }
  virtual HRESULT STDMETHODCALLTYPE CopyServerFile(long a, long* out) {
    return Heard("CopyServerFile", out, a);
  }
  virtual HRESULT STDMETHODCALLTYPE GetLastResult(long* out) { return Heard("GetLastResult", out); }
  virtual HRESULT STDMETHODCALLTYPE Entry37() { return Heard("Entry37", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry38() { return Heard("Entry38", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry39() { return Heard("Entry39", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry40() { return Heard("Entry40", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry41() { return Heard("Entry41", nullptr); }
  virtual HRESULT STDMETHODCALLTYPE Entry42() { return Heard("Entry42", nullptr); }
};

}  // namespace

const ServerClass kServerClass{
    {0x72290314, 0x2AB3, 0x42C2, {0x9B, 0x36, 0x95, 0x0E, 0x06, 0x4F, 0xA7, 0xFE}},
    kCscKey,
    {0x90302F64, 0xB9C6, 0x471A, {0xAF, 0x28, 0x5D, 0xE9, 0x53, 0xCF, 0x55, 0x06}},
    [] { return static_cast<IUnknown*>(static_cast<IDispatch*>(new Scripted<CscEntries>)); }};

}  // namespace qv::test
