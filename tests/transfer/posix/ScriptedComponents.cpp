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

// An entry that notes the call, with the out value's place (or null) and the arguments.
#define QV_ENTRY(name, parameters, ...)                                 \
  HRESULT name parameters override { return Call(#name, __VA_ARGS__); } \
  static_assert(true)

// What both share.
template <class Interface>
class Scripted : public Interface {
 public:
  Scripted() { ++script.alive; }
  QV_ENTRY(AddUploadFile, (Text a, Text b), nullptr, a, b);
  QV_ENTRY(AddDownloadFile, (Text a, Text b), nullptr, a, b);
  QV_ENTRY(AddCopyServerFile, (Text a, Text b), nullptr, a, b);
  QV_ENTRY(CopyServerFile, (long a, long* out), out, a);
  QV_ENTRY(GetLastResult, (long* out), out);
  QV_ENTRY(FtpLogout, (long* out), out);
  QV_ENTRY(RenameServerFile, (Text a, Text b, long* out), out, a, b);
  QV_ENTRY(DeleteServerFile, (Text a, long* out), out, a);
  QV_ENTRY(DeleteServerPath, (Text a, long* out), out, a);
  HRESULT IsOperatorFileSuc(Text a, long* out) override { return script.Ask(a, out); }
  void Release() override {
    --script.alive;
    delete this;
  }

 protected:
  virtual ~Scripted() = default;
};

class Ftp final : public Scripted<IQvCoFtp> {
  QV_ENTRY(FtpLogin, (Text a, short b, Text c, Text d, long* out), out, a, b, c, d);
  QV_ENTRY(UploadFile, (long a, long* out), out, a);
  QV_ENTRY(DownloadFile, (long a, long b, long* out), out, a, b);
  QV_ENTRY(AddFtpServer, (Text a, short b, Text c, Text d, long* out), out, a, b, c, d);
  QV_ENTRY(SetTransModel1, (long a), nullptr, a);
  QV_ENTRY(SetTransModel2, (long a), nullptr, a);
};

class Csc final : public Scripted<IQvCoCSC> {
  QV_ENTRY(FtpLogin, (Text a, short b, Text c, Text d, long e, long* out), out, a, b, c, d, e);
  QV_ENTRY(UploadFile, (long a, long b, long* out), out, a, b);
  QV_ENTRY(DownloadFile, (long a, long b, long c, long* out), out, a, b, c);
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
