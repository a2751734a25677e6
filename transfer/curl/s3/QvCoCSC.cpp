#include "qvnetcall/transfer/QvCoCSC.h"

#include <memory>
#include <new>
#include <optional>

#include "CloudParameters.h"
#include "S3Endpoint.h"
#include "S3Store.h"
#include "qvnetcall/transfer/Extensions.h"
#include "transfer/curl/TransferDesk.h"

namespace qv {

namespace {

constexpr TransferKind kAllKinds[] = {TransferKind::kUpload, TransferKind::kDownload,
                                      TransferKind::kCopy};

CloudParameters& Parameters() {
  // Never destroyed: it may be asked for when the program is ending.
  static auto* const parameters = new CloudParameters;
  return *parameters;
}

class CloudComponent final : public IQvCoCSC {
 public:
  virtual ~CloudComponent() = default;

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

  HRESULT AddUploadFile(const char* first, const char* second) override {
    return Guarded([&] { desk_.Add(TransferKind::kUpload, first, second); });
  }
  HRESULT UploadFile(long option, long, long* count) override {
    return Guarded([&] { *count = desk_.Run(TransferKind::kUpload, option); });
  }
  HRESULT AddDownloadFile(const char* first, const char* second) override {
    return Guarded([&] { desk_.Add(TransferKind::kDownload, first, second); });
  }
  HRESULT DownloadFile(long, long option, long, long* count) override {
    return Guarded([&] { *count = desk_.Run(TransferKind::kDownload, option); });
  }
  HRESULT AddCopyServerFile(const char* first, const char* second) override {
    return Guarded([&] { desk_.Add(TransferKind::kCopy, first, second); });
  }
  HRESULT CopyServerFile(long option, long* count) override {
    return Guarded([&] { *count = desk_.Run(TransferKind::kCopy, option); });
  }
  HRESULT IsOperatorFileSuc(const char* path, long* result) override {
    return Guarded([&] { *result = desk_.HasSucceeded(path); });
  }
  HRESULT GetLastResult(long* result) override {
    *result = desk_.LastResult();
    return 0;
  }

  HRESULT RenameServerFile(const char* old_path, const char* new_path, long* result) override {
    return Guarded([&] { *result = desk_.Rename(old_path, new_path); });
  }
  HRESULT DeleteServerFile(const char* path, long* result) override {
    return Guarded([&] { *result = desk_.DeleteFile(path); });
  }
  HRESULT DeleteServerPath(const char* path, long* result) override {
    return Guarded([&] { *result = desk_.DeleteFolder(path); });
  }

  void Release() override { delete this; }

 private:
  QvTransferResult LogIn(const char* host, short port, const char* user, const char* password,
                         long extra);
  void Leave();

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

}  // namespace qv

extern "C" {

IQvCoCSC* QvCoCSCCreate() {
  qv::CloudComponent* component = nullptr;
  static_cast<void>(qv::Guarded([&] { component = new qv::CloudComponent; }));
  return component;
}

void QvCoCSCSetProgress(QvTransferCallback callback, void* context) {
  qv::SetRunCallback(callback, context);
}

int QvCoCSCSetParameter(const char* name, const char* value) {
  int is_set = 0;
  static_cast<void>(qv::Guarded([&] {
    is_set = name != nullptr && value != nullptr && qv::Parameters().Set(name, value) ? 1 : 0;
  }));
  return is_set;
}
}
