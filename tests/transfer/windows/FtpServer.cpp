#include "ComServer.h"
#include "Registration.h"

namespace qv::test {
namespace {

// In the order of the table, whose first seven entries are those of IDispatch.
class FtpEntries : public IDispatch {
 public:
  QV_ENTRY(FtpLogin, (BSTR a, short b, BSTR c, BSTR d, long* out), out, a, b, c, d);
  QV_ENTRY(AddUploadFile, (BSTR a, BSTR b), nullptr, a, b);
  QV_UNUSED(9);
  QV_ENTRY(UploadFile, (long a, long* out), out, a);
  QV_UNUSED2(11, 12);
  QV_UNUSED(13);
  QV_ENTRY(AddDownloadFile, (BSTR a, BSTR b), nullptr, a, b);
  QV_UNUSED(15);
  QV_ENTRY(DownloadFile, (long a, long b, long* out), out, a, b);
  QV_UNUSED(17);
  QV_ENTRY(RenameServerFile, (BSTR a, BSTR b, long* out), out, a, b);
  QV_ENTRY(FtpLogout, (long* out), out);
  QV_ENTRY(DeleteServerFile, (BSTR a, long* out), out, a);
  QV_ENTRY(DeleteServerPath, (BSTR a, long* out), out, a);
  QV_UNUSED4(22, 23, 24, 25);
  virtual HRESULT STDMETHODCALLTYPE IsOperatorFileSuc(BSTR a, long* out) {
    return HeardQuestion(a, out);
  }
  QV_UNUSED4(27, 28, 29, 30);
  QV_UNUSED2(31, 32);
  QV_ENTRY(AddFtpServer, (BSTR a, short b, BSTR c, BSTR d, long* out), out, a, b, c, d);
  QV_UNUSED(34);
  QV_ENTRY(AddCopyServerFile, (BSTR a, BSTR b), nullptr, a, b);
  QV_ENTRY(CopyServerFile, (long a, long* out), out, a);
  QV_ENTRY(GetLastResult, (long* out), out);
  QV_UNUSED2(38, 39);
  QV_UNUSED(40);
  QV_ENTRY(SetTransModel1, (long a), nullptr, a);
  QV_ENTRY(SetTransModel2, (long a), nullptr, a);
};

}  // namespace

const ServerClass kServerClass{
    {0x5963B49F, 0xD05D, 0x48C5, {0x9D, 0x24, 0xF6, 0xC0, 0x90, 0x28, 0x10, 0x9A}},
    kFtpKey,
    {0xDDE4AECC, 0xCD9D, 0x4BF8, {0x8C, 0x71, 0xD8, 0x52, 0xAC, 0xBB, 0x2A, 0x7A}},
    [] { return static_cast<IUnknown*>(static_cast<IDispatch*>(new Scripted<FtpEntries>)); }};

}  // namespace qv::test
