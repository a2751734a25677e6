#include "qvnetcall/transfer/QvCoCSC.h"

#include <algorithm>
#include <memory>
#include <new>
#include <optional>

#include "S3Endpoint.h"
#include "S3Store.h"
#include "base/text/Letters.h"
#include "base/text/Numbers.h"
#include "base/text/ParameterSet.h"
#include "components/queue/TransferDesk.h"
#include "qvnetcall/transfer/Extensions.h"

namespace qv::components {

namespace {

constexpr TransferKind kAllKinds[] = {TransferKind::kUpload, TransferKind::kDownload,
                                      TransferKind::kCopy};

using Settings = TransferSettings;

// The sizes that servers accept for a part that is not the last.
constexpr std::uint64_t kLeastPart = 5U << 20;
constexpr std::uint64_t kLargestPart = std::uint64_t{5} << 30;

bool SetPartBytes(Settings& to, const std::string& value) {
  const auto bytes = text::ParseNumber<std::uint64_t>(value);
  if (!bytes || *bytes < kLeastPart || *bytes > kLargestPart) return false;
  to.part_bytes = *bytes;
  return true;
}

// The region becomes part of a header.
bool SetRegion(Settings& to, const std::string& value) {
  const auto is_allowed = [](char c) { return text::IsLetterOrDigit(c) || c == '-' || c == '_'; };
  if (value.empty() || !std::all_of(value.begin(), value.end(), is_allowed)) return false;
  return text::SetText(to.region, value);
}

constexpr text::Parameter<Settings> kParameters[] = {
    text::TextParameter<Settings, &Settings::ca_file>("ca_file"),
    text::MillisecondsParameter<Settings, &Settings::connect_timeout>("connect_timeout_ms"),
    text::MillisecondsParameter<Settings, &Settings::io_timeout>("io_timeout_ms"),
    {"region", [](const Settings& from) { return from.region; }, &SetRegion},
    {"part_bytes", [](const Settings& from) { return std::to_string(from.part_bytes); },
     &SetPartBytes},
};

text::ParameterSet<Settings>& Parameters() {
  // Never destroyed, because it may still be used while the program ends.
  static auto* const parameters = new text::ParameterSet<Settings>(kParameters);
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
  // Declared before the desk, whose destructor uses it.
  std::unique_ptr<S3Store> store_;
  TransferDesk desk_;
};

QvTransferResult CloudComponent::LogIn(const char* host, short port, const char* user,
                                       const char* password, long extra) {
  Leave();
  // Ports above 32767 are passed as negative numbers.
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
