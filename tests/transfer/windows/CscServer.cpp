#include "ComServer.h"
#include "Registration.h"

namespace qv::test {
namespace {

// In the order of the table, whose first seven entries are those of IDispatch.
class CscEntries : public IDispatch {
 public:
  QV_ENTRY(FtpLogin, (BSTR a, short b, BSTR c, BSTR d, long e, long* out), out, a, b, c, d, e);
  QV_ENTRY(FtpLogout, (long* out), out);
  QV_ENTRY(AddUploadFile, (BSTR a, BSTR b), nullptr, a, b);
  QV_UNUSED2(10, 11);
  QV_ENTRY(UploadFile, (long a, long b, long* out), out, a, b);
  QV_UNUSED4(13, 14, 15, 16);
  QV_ENTRY(AddDownloadFile, (BSTR a, BSTR b), nullptr, a, b);
  QV_UNUSED(18);
  QV_ENTRY(DownloadFile, (long a, long b, long c, long* out), out, a, b, c);
  QV_UNUSED(20);
  QV_ENTRY(RenameServerFile, (BSTR a, BSTR b, long* out), out, a, b);
  QV_ENTRY(DeleteServerFile, (BSTR a, long* out), out, a);
  QV_ENTRY(DeleteServerPath, (BSTR a, long* out), out, a);
  virtual HRESULT STDMETHODCALLTYPE IsOperatorFileSuc(BSTR a, long* out) {
    return HeardQuestion(a, out);
  }
  QV_UNUSED4(25, 26, 27, 28);
  QV_UNUSED4(29, 30, 31, 32);
  QV_UNUSED(33);
  QV_ENTRY(AddCopyServerFile, (BSTR a, BSTR b), nullptr, a, b);
  QV_ENTRY(CopyServerFile, (long a, long* out), out, a);
  QV_ENTRY(GetLastResult, (long* out), out);
  QV_UNUSED4(37, 38, 39, 40);
  QV_UNUSED2(41, 42);
};

}  // namespace

const ServerClass kServerClass{
    {0x72290314, 0x2AB3, 0x42C2, {0x9B, 0x36, 0x95, 0x0E, 0x06, 0x4F, 0xA7, 0xFE}},
    kCscKey,
    {0x90302F64, 0xB9C6, 0x471A, {0xAF, 0x28, 0x5D, 0xE9, 0x53, 0xCF, 0x55, 0x06}},
    [] { return static_cast<IUnknown*>(static_cast<IDispatch*>(new Scripted<CscEntries>)); }};

}  // namespace qv::test
