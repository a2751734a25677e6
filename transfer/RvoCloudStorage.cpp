#include "qvnetcall/RvoCloudStorage.h"

#include <memory>
#include <utility>

#include "QueueCalls.h"
#include "qvnetcall/ResultCodes.h"
#include "qvnetcall/transfer/QvCoCSC.h"

namespace {

constexpr const char* kLabels[] = {"CSCUp", "CSCDown", "CSCCopy"};
constexpr long kRunConstant = -1;

CString ResultSuffix(long result) {
  CString suffix;
  suffix.Format(". Res:%ld.", result);
  return suffix;
}

// Reference count for copies. It is here because hosts rely on sizeof(CRvoCloudStorage) being four
// pointers.
struct SharedClient : CRvoCSCClient {
  int owners = 1;
};

}  // namespace

CRvoCSCClient::CRvoCSCClient() {
  qv::EnterApartment();
  component_ = qv::CreateCscComponent();
}

// Kept on purpose: the apartment is left before the component is released.
CRvoCSCClient::~CRvoCSCClient() {
  qv::LeaveApartment();
  if (component_ != nullptr) component_->Release();
  component_ = nullptr;
}

CRvoCSCFiles::CRvoCSCFiles(CRvoCSCClient* owner) : owner_(owner) {}

CRvoCSCFiles::~CRvoCSCFiles() { Empty(); }

void CRvoCSCFiles::Add(const CString& first, const CString& second) {
  qv::PairList{first_, second_, done_}.Add(first, second);
}

void CRvoCSCFiles::Empty() { qv::PairList{first_, second_, done_}.Empty(); }

CString CRvoCSCFiles::GetFailInfo(int kind, long count) {
  const auto succeeded = [this](const CString& path) {
    return qv::Ask(owner_->Get(), &IQvCoCSC::IsOperatorFileSuc, path) == qv::result::kFileSucceeded;
  };
  return qv::PairList{first_, second_, done_}.FailReport(qv::LabelOf(kLabels, kind), count,
                                                         succeeded);
}

CRvoCloudStorage::CRvoCloudStorage() {
  auto client = std::make_unique<SharedClient>();
  auto uploads = std::make_unique<CRvoCSCFiles>(client.get());
  auto downloads = std::make_unique<CRvoCSCFiles>(client.get());
  copies_ = new CRvoCSCFiles(client.get());
  downloads_ = downloads.release();
  uploads_ = uploads.release();
  client_ = client.release();
}

CRvoCloudStorage::CRvoCloudStorage(const CRvoCloudStorage& source)
    : client_(source.client_),
      uploads_(source.uploads_),
      downloads_(source.downloads_),
      copies_(source.copies_) {
  ++static_cast<SharedClient*>(client_)->owners;
}

CRvoCloudStorage& CRvoCloudStorage::operator=(const CRvoCloudStorage& source) {
  CRvoCloudStorage shared(source);
  std::swap(client_, shared.client_);
  std::swap(uploads_, shared.uploads_);
  std::swap(downloads_, shared.downloads_);
  std::swap(copies_, shared.copies_);
  return *this;
}

CRvoCloudStorage::~CRvoCloudStorage() {
  auto* const shared = static_cast<SharedClient*>(client_);
  if (--shared->owners > 0) return;
  delete std::exchange(uploads_, nullptr);
  delete std::exchange(downloads_, nullptr);
  delete std::exchange(copies_, nullptr);
  client_ = nullptr;
  delete shared;
}

long CRvoCloudStorage::FtpLogin(CString host, CString user, CString password, short port,
                                int extra) {
  EmptyQueues();
  return qv::Ask(client_->Get(), &IQvCoCSC::FtpLogin, host, port, user, password,
                 static_cast<long>(extra));
}

long CRvoCloudStorage::FtpLogout() {
  EmptyQueues();
  return qv::Ask(client_->Get(), &IQvCoCSC::FtpLogout);
}

void CRvoCloudStorage::EmptyQueues() {
  uploads_->Empty();
  downloads_->Empty();
  copies_->Empty();
}

long CRvoCloudStorage::AddUploadFile(CString first, CString second) {
  return qv::AddPair(client_->Get(), &IQvCoCSC::AddUploadFile, *uploads_, first, second);
}

long CRvoCloudStorage::AddDownloadFile(CString first, CString second) {
  return qv::AddPair(client_->Get(), &IQvCoCSC::AddDownloadFile, *downloads_, first, second);
}

long CRvoCloudStorage::AddCopyServerFile(CString first, CString second) {
  return qv::AddPair(client_->Get(), &IQvCoCSC::AddCopyServerFile, *copies_, first, second);
}

long CRvoCloudStorage::UploadFile(long option, long& count) {
  const auto run = [=](IQvCoCSC& component, long* succeeded) {
    return component.UploadFile(option, kRunConstant, succeeded);
  };
  return qv::RunQueue(client_->Get(), *uploads_, qv::kUpload, count, run, ResultSuffix);
}

long CRvoCloudStorage::DownloadFile(long option, long& count) {
  const auto run = [=](IQvCoCSC& component, long* succeeded) {
    return component.DownloadFile(qv::kDownloadConstant, option, kRunConstant, succeeded);
  };
  return qv::RunQueue(client_->Get(), *downloads_, qv::kDownload, count, run, ResultSuffix);
}

// Kept on purpose: only the report of copies does not end with the result.
long CRvoCloudStorage::CopyServerile(long option, long& count) {
  const auto run = [=](IQvCoCSC& component, long* succeeded) {
    return component.CopyServerFile(option, succeeded);
  };
  return qv::RunQueue(client_->Get(), *copies_, qv::kCopy, count, run, qv::NoSuffix);
}

// The result of adding is ignored, here and in the next call.
long CRvoCloudStorage::UploadOneFile(CString first, CString second, long option) {
  AddUploadFile(first, second);
  long count = 0;
  return UploadFile(option, count);
}

long CRvoCloudStorage::DownloadOneFile(CString first, CString second, long option) {
  AddDownloadFile(first, second);
  long count = 0;
  return DownloadFile(option, count);
}

long CRvoCloudStorage::DeleteServerFile(CString path) {
  const long result = qv::Ask(client_->Get(), &IQvCoCSC::DeleteServerFile, path);
  return qv::LogUnlessZero(result, "CSCDelFile Fail %s. Res:%ld.", path, result);
}

long CRvoCloudStorage::DeleteServerPath(CString path) {
  const long result = qv::Ask(client_->Get(), &IQvCoCSC::DeleteServerPath, path);
  return qv::LogUnlessZero(result, "CSCDelPath Fail %s. Res:%ld.", path, result);
}

long CRvoCloudStorage::RenameServerFile(CString old_path, CString new_path) {
  const long result = qv::Ask(client_->Get(), &IQvCoCSC::RenameServerFile, old_path, new_path);
  return qv::LogUnlessZero(result, "CSCRenFile Fail %s->%s. Res:%ld.", old_path, new_path, result);
}

// Kept on purpose: 1, which means success, is logged too, and the text does not contain the result.
long CRvoCloudStorage::IsOperatorFileSuc(CString path) {
  const long result = qv::Ask(client_->Get(), &IQvCoCSC::IsOperatorFileSuc, path);
  return qv::LogUnlessZero(result, "CSC_IsOperatorFileSuc Fail %s", path);
}

CString CRvoCloudStorage::GetFailInfo(int kind, long count) {
  return qv::ReportOf({uploads_, downloads_, copies_}, kind, count);
}
