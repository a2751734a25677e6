#include "qvnetcall/transfer/QvCoCSC.h"

#include <memory>
#include <new>
#include <optional>

#include "CloudParameters.h"
#include "S3Endpoint.h"
#include "S3Store.h"
#include "components/queue/DeskComponent.h"
#include "qvnetcall/transfer/Extensions.h"

namespace qv::components {

namespace {

constexpr TransferKind kAllKinds[] = {TransferKind::kUpload, TransferKind::kDownload,
                                      TransferKind::kCopy};

CloudParameters& Parameters() {
  // Never destroyed: it may be asked for when the program is ending.
  static auto* const parameters = new CloudParameters;
  return *parameters;
}

class CloudComponent final : public DeskComponent<IQvCoCSC> {
 public:
  HRESULT FtpLogin(const char* host, short port, const char* user, const char* password, long extra,
                   long* result) override {
    return Guarded([&] { *result = LogIn(host, port, user, password, extra); });
  }
  HRESULT FtpLogout(long* result) override {
    return Guarded([&] {
      Leave();
      *result = QvTransfer_Success;
    });
  }

  HRESULT UploadFile(long option, long, long* count) override {
    return Run(TransferKind::kUpload, option, count);
  }
  HRESULT DownloadFile(long, long option, long, long* count) override {
    return Run(TransferKind::kDownload, option, count);
  }

 private:
  QvTransferResult LogIn(const char* host, short port, const char* user, const char* password,
                         long extra);
  void Leave();
  TransferDesk& Desk() override { return desk_; }

  const TransferSettings settings_ = Parameters().Snapshot();
  // Outlives the desk, which cleans up there.
  std::unique_ptr<S3Store> store_;
  TransferDesk desk_;
};

QvTransferResult CloudComponent::LogIn(const char* host, short port, const char* user,
                                       const char* password, long extra) {
  Leave();
  // Ports above 32767 come as negative numbers.
  const auto endpoint = S3Endpoint::Parse(host, static_cast<std::uint16_t>(port), extra);
  if (!endpoint) return QvTransfer_BadArgument;
  auto result = QvTransfer_Success;
  store_ = S3Store::LogIn(*endpoint, {user, password, settings_.region}, settings_, result);
  desk_.Use(store_.get());
  return result;
}

void CloudComponent::Leave() {
  for (const TransferKind kind : kAllKinds) desk_.Empty(kind);
  desk_.Use(nullptr);
  store_.reset();
}

}  // namespace

}  // namespace qv::components

extern "C" {

IQvCoCSC* QvCoCSCCreate() {
  qv::components::CloudComponent* component = nullptr;
  static_cast<void>(
      qv::components::Guarded([&] { component = new qv::components::CloudComponent; }));
  return component;
}

void QvCoCSCSetProgress(QvTransferCallback callback, void* context) {
  qv::components::SetRunCallback(callback, context);
}

int QvCoCSCSetParameter(const char* name, const char* value) {
  int is_set = 0;
  static_cast<void>(qv::components::Guarded([&] {
    is_set = name != nullptr && value != nullptr && qv::components::Parameters().Set(name, value)
                 ? 1
                 : 0;
  }));
  return is_set;
}
}
