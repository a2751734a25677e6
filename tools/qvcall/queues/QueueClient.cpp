#include "QueueClient.h"

#include "qvnetcall/QvNetCall4.h"
#include "tools/qvcall/system/SystemPlaces.h"

namespace qv::tool {
namespace {

// The calls that both classes of the library share.
template <class Store>
class ClientOf : public QueueClient {
 public:
  long Logout() override { return store_.FtpLogout(); }
  long Add(Direction direction, const std::string& first, const std::string& second) override {
    constexpr long (Store::*kAdd[])(CString, CString) = {
        &Store::AddUploadFile, &Store::AddDownloadFile, &Store::AddCopyServerFile};
    return (store_.*kAdd[static_cast<int>(direction)])(first.c_str(), second.c_str());
  }
  long Run(Direction direction, long retries, long& count) override {
    constexpr long (Store::*kRun[])(long, long&) = {&Store::UploadFile, &Store::DownloadFile,
                                                    &Store::CopyServerile};
    return (store_.*kRun[static_cast<int>(direction)])(retries, count);
  }
  std::string FailInfo(Direction direction, long count) override {
    return std::string(store_.GetFailInfo(static_cast<int>(direction), count).View());
  }
  long Move(const std::string& from, const std::string& to) override {
    return store_.RenameServerFile(from.c_str(), to.c_str());
  }
  long RemoveFile(const std::string& path) override {
    return store_.DeleteServerFile(path.c_str());
  }
  long RemoveFolder(const std::string& path) override {
    return store_.DeleteServerPath(path.c_str());
  }

 protected:
  // The library takes the 16 bits of the port as a signed number.
  static short PortOf(const QueueHost& host) { return static_cast<short>(host.port); }

  Store store_;
};

class FtpClient final : public ClientOf<CRvoFtp> {
 public:
  long Login(const QueueHost& host, const std::string& password) override {
    const long result = store_.SetFtpTransModel(host.is_active ? 0 : 1, host.is_text ? 0 : 1);
    if (result < 0) return result;
    return store_.FtpLogin(host.name.c_str(), host.login.c_str(), password.c_str(), PortOf(host));
  }
};

class CloudClient final : public ClientOf<CRvoCloudStorage> {
 public:
  long Login(const QueueHost& host, const std::string& password) override {
    return store_.FtpLogin(host.name.c_str(), host.login.c_str(), password.c_str(), PortOf(host),
                           host.has_virtual_host ? 1 : 0);
  }
};

QueueExtensions ExtensionsIn(const char* component, const char* progress, const char* parameter) {
  return {ComponentFunction<decltype(QvCoFtpSetProgress)>(component, progress),
          ComponentFunction<decltype(QvCoFtpSetParameter)>(component, parameter)};
}

}  // namespace

std::unique_ptr<QueueClient> MakeQueueClient(Service service) {
  if (service == Service::kFtp) return std::make_unique<FtpClient>();
  return std::make_unique<CloudClient>();
}

QueueExtensions ExtensionsOf(Service service) {
  if (service == Service::kFtp) {
    return ExtensionsIn("QvCoFtp", "QvCoFtpSetProgress", "QvCoFtpSetParameter");
  }
  return ExtensionsIn("QvCoCSC", "QvCoCSCSetProgress", "QvCoCSCSetParameter");
}

}  // namespace qv::tool
