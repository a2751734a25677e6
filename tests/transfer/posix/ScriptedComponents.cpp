// Both scripted components; both libraries are built from this source.
#include "qvnetcall/transfer/QvCoCSC.h"
#include "qvnetcall/transfer/QvCoFtp.h"
#include "tests/transfer/Script.h"

namespace {

using Text = const char*;

qv::test::Script script;

template <class... Args>
HRESULT Call(Text method, long* out, Args... args) {
  return script.Call(method, out, args...);
}

// What both share.
template <class Interface>
class Scripted : public Interface {
 public:
  Scripted() { ++script.alive; }
  HRESULT AddUploadFile(Text a, Text b) override { return Call("AddUploadFile", nullptr, a, b); }
  HRESULT AddDownloadFile(Text a, Text b) override {
    return Call("AddDownloadFile", nullptr, a, b);
  }
  HRESULT AddCopyServerFile(Text a, Text b) override {
    return Call("AddCopyServerFile", nullptr, a, b);
  }
  HRESULT CopyServerFile(long a, long* out) override { return Call("CopyServerFile", out, a); }
  HRESULT GetLastResult(long* out) override { return Call("GetLastResult", out); }
  HRESULT FtpLogout(long* out) override { return Call("FtpLogout", out); }
  HRESULT RenameServerFile(Text a, Text b, long* out) override {
    return Call("RenameServerFile", out, a, b);
  }
  HRESULT DeleteServerFile(Text a, long* out) override { return Call("DeleteServerFile", out, a); }
  HRESULT DeleteServerPath(Text a, long* out) override { return Call("DeleteServerPath", out, a); }
  HRESULT IsOperatorFileSuc(Text a, long* out) override { return script.Ask(a, out); }
  void Release() override {
    --script.alive;
    delete this;
  }

 protected:
  virtual ~Scripted() = default;
};

class Ftp final : public Scripted<IQvCoFtp> {
  HRESULT FtpLogin(Text a, short b, Text c, Text d, long* out) override {
    return Call("FtpLogin", out, a, b, c, d);
  }
  HRESULT UploadFile(long a, long* out) override { return Call("UploadFile", out, a); }
  HRESULT DownloadFile(long a, long b, long* out) override {
    return Call("DownloadFile", out, a, b);
  }
  HRESULT AddFtpServer(Text a, short b, Text c, Text d, long* out) override {
    return Call("AddFtpServer", out, a, b, c, d);
  }
  HRESULT SetTransModel1(long a) override { return Call("SetTransModel1", nullptr, a); }
  HRESULT SetTransModel2(long a) override { return Call("SetTransModel2", nullptr, a); }
};

class Csc final : public Scripted<IQvCoCSC> {
  HRESULT FtpLogin(Text a, short b, Text c, Text d, long e, long* out) override {
    return Call("FtpLogin", out, a, b, c, d, e);
  }
  HRESULT UploadFile(long a, long b, long* out) override { return Call("UploadFile", out, a, b); }
  HRESULT DownloadFile(long a, long b, long c, long* out) override {
    return Call("DownloadFile", out, a, b, c);
  }
};

template <class Component>
Component* Create() {
  ++script.factory_calls;
  return script.absent ? nullptr : new Component;
}

}  // namespace

IQvCoFtp* QvCoFtpCreate() { return Create<Ftp>(); }
IQvCoCSC* QvCoCSCCreate() { return Create<Csc>(); }
extern "C" QVNETCALL_API qv::test::Script* TheScript() { return &script; }
