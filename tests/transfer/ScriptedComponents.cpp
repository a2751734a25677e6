// Both components as a script; the two libraries are made of this one source.
#include <memory>

#include "Script.h"
#include "qvnetcall/transfer/QvCoCSC.h"
#include "qvnetcall/transfer/QvCoFtp.h"

namespace {

qv::test::Script script;

std::string Text(const char* value) { return value; }
std::string Text(long value) { return std::to_string(value); }

template <class... Args>
HRESULT Call(const char* method, long* out, Args... args) {
  std::string call(method);
  ((call += (call == method ? " " : ",") + Text(args)), ...);
  script.calls.push_back(call);
  const HRESULT result = script.hresults[method];
  if (result >= 0 && out != nullptr) *out = script.results[method];
  return result;
}

HRESULT AnswerAbout(const char* path, long* out) {
  script.hook(path);
  const HRESULT result = Call("IsOperatorFileSuc", nullptr, path);
  const auto answer = script.answers.find(path);
  if (result >= 0) *out = answer != script.answers.end() ? answer->second : 1;
  return result;
}

// What both have alike.
template <class Interface>
class Scripted : public Interface {
 public:
  Scripted() { ++script.alive; }

  HRESULT AddUploadFile(const char* first, const char* second) override {
    return Call("AddUploadFile", nullptr, first, second);
  }
  HRESULT AddDownloadFile(const char* first, const char* second) override {
    return Call("AddDownloadFile", nullptr, first, second);
  }
  HRESULT RenameServerFile(const char* old_path, const char* new_path, long* out) override {
    return Call("RenameServerFile", out, old_path, new_path);
  }
  HRESULT FtpLogout(long* out) override { return Call("FtpLogout", out); }
  HRESULT DeleteServerFile(const char* path, long* out) override {
    return Call("DeleteServerFile", out, path);
  }
  HRESULT DeleteServerPath(const char* path, long* out) override {
    return Call("DeleteServerPath", out, path);
  }
  HRESULT IsOperatorFileSuc(const char* path, long* out) override { return AnswerAbout(path, out); }
  HRESULT AddCopyServerFile(const char* first, const char* second) override {
    return Call("AddCopyServerFile", nullptr, first, second);
  }
  HRESULT CopyServerFile(long option, long* out) override {
    return Call("CopyServerFile", out, option);
  }
  HRESULT GetLastResult(long* out) override { return Call("GetLastResult", out); }
  void Release() override {
    --script.alive;
    delete this;
  }

 protected:
  virtual ~Scripted() = default;
};

class ScriptedFtp final : public Scripted<IQvCoFtp> {
  HRESULT FtpLogin(const char* host, short port, const char* user, const char* password,
                   long* out) override {
    return Call("FtpLogin", out, host, port, user, password);
  }
  HRESULT UploadFile(long option, long* out) override { return Call("UploadFile", out, option); }
  HRESULT DownloadFile(long constant, long option, long* out) override {
    return Call("DownloadFile", out, constant, option);
  }
  HRESULT AddFtpServer(const char* host, short port, const char* user, const char* password,
                       long* out) override {
    return Call("AddFtpServer", out, host, port, user, password);
  }
  HRESULT SetTransModel1(long value) override { return Call("SetTransModel1", nullptr, value); }
  HRESULT SetTransModel2(long value) override { return Call("SetTransModel2", nullptr, value); }
};

class ScriptedCsc final : public Scripted<IQvCoCSC> {
  HRESULT FtpLogin(const char* host, short port, const char* user, const char* password, long extra,
                   long* out) override {
    return Call("FtpLogin", out, host, port, user, password, extra);
  }
  HRESULT UploadFile(long option, long constant, long* out) override {
    return Call("UploadFile", out, option, constant);
  }
  HRESULT DownloadFile(long one, long option, long constant, long* out) override {
    return Call("DownloadFile", out, one, option, constant);
  }
};

bool Comes() {
  ++script.factory_calls;
  if (script.nulls == 0) return true;
  --script.nulls;
  return false;
}

}  // namespace

extern "C" {
IQvCoFtp* QvCoFtpCreate() { return Comes() ? new ScriptedFtp : nullptr; }
IQvCoCSC* QvCoCSCCreate() { return Comes() ? new ScriptedCsc : nullptr; }
QVNETCALL_API qv::test::Script* TheScript() { return &script; }
}
