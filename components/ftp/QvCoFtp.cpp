#include "qvnetcall/transfer/QvCoFtp.h"

#include <utility>

#include "FtpStore.h"
#include "base/text/ParameterSet.h"
#include "components/queue/TransferDesk.h"
#include "qvnetcall/transfer/Extensions.h"

namespace qv::components {

namespace {

constexpr text::Parameter<TransferSettings> kParameters[] = {
    text::TextParameter<TransferSettings, &TransferSettings::ca_file>("ca_file"),
    text::MillisecondsParameter<TransferSettings, &TransferSettings::connect_timeout>(
        "connect_timeout_ms"),
    text::MillisecondsParameter<TransferSettings, &TransferSettings::io_timeout>("io_timeout_ms"),
};

// Never destroyed, because threads of the host may still be in a call when the program ends.
text::ParameterSet<TransferSettings>& SharedParameters() {
  static auto* const parameters = new text::ParameterSet<TransferSettings>(kParameters);
  return *parameters;
}

class FtpComponent final : public DeskComponent<IQvCoFtp> {
 public:
  FtpComponent() : store_(SharedParameters().Snapshot()) { desk_.Use(&store_); }

  HRESULT FtpLogin(const char* host, short port, const char* user, const char* password,
                   long* result) override {
    return Guarded([&] {
      desk_.Empty(TransferKind::kUpload);
      auto server = MakeFtpServer(host, static_cast<std::uint16_t>(port), user, password);
      if (server) {
        *result = store_.Session().Open(std::move(*server));
      } else {
        store_.Session().Quit();
        *result = QvTransfer_BadArgument;
      }
    });
  }

  HRESULT AddFtpServer(const char* host, short port, const char* user, const char* password,
                       long* result) override {
    return Guarded([&] {
      desk_.Empty(TransferKind::kUpload);
      auto server = MakeFtpServer(host, static_cast<std::uint16_t>(port), user, password);
      *result = server ? QvTransfer_Success : QvTransfer_BadArgument;
      if (server) store_.Session().Add(std::move(*server));
    });
  }

  HRESULT FtpLogout(long* result) override {
    return Guarded([&] {
      desk_.Empty(TransferKind::kUpload);
      store_.Session().Quit();
      *result = QvTransfer_Success;
    });
  }

  HRESULT UploadFile(long option, long* count) override {
    return Run(TransferKind::kUpload, option, count);
  }
  HRESULT DownloadFile(long, long option, long* count) override {
    return Run(TransferKind::kDownload, option, count);
  }

  HRESULT SetTransModel1(long value) override {
    store_.Session().SetPassive(value != 0);
    return 0;
  }
  HRESULT SetTransModel2(long value) override {
    store_.SetText(value == 0);
    return 0;
  }

 private:
  TransferDesk& Desk() override { return desk_; }

  FtpStore store_;
  // Declared after the store, which its destructor uses.
  TransferDesk desk_;
};

}  // namespace

}  // namespace qv::components

extern "C" {

IQvCoFtp* QvCoFtpCreate() {
  IQvCoFtp* component = nullptr;
  const HRESULT made =
      qv::components::Guarded([&] { component = new qv::components::FtpComponent; });
  return made == 0 ? component : nullptr;
}

void QvCoFtpSetProgress(QvTransferCallback callback, void* context) {
  qv::components::SetRunCallback(callback, context);
}

int QvCoFtpSetParameter(const char* name, const char* value) {
  if (name == nullptr || value == nullptr) return 0;
  bool is_set = false;
  const HRESULT done = qv::components::Guarded(
      [&] { is_set = qv::components::SharedParameters().Set(name, value); });
  return done == 0 && is_set ? 1 : 0;
}
}
