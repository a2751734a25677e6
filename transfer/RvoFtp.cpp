#include "qvnetcall/RvoFtp.h"

#include "QueueCalls.h"
#include "qvnetcall/ResultCodes.h"
#include "qvnetcall/transfer/QvCoFtp.h"

namespace {

constexpr const char* kLabels[] = {"FtpUp", "FtpDown", "FtpCopy"};

}  // namespace

CRvoFtpClient::CRvoFtpClient() { qv::EnterApartment(); }

// The apartment is not left, because the host may use it further.
CRvoFtpClient::~CRvoFtpClient() {
  if (component_ != nullptr) component_->Release();
  component_ = nullptr;
}

IQvCoFtp* CRvoFtpClient::Get() {
  if (component_ == nullptr) component_ = qv::CreateFtpComponent();
  return component_;
}

CRvoFtpFiles::CRvoFtpFiles(CRvoFtpClient* owner) : owner_(owner) {}

void CRvoFtpFiles::Add(const CString& first, const CString& second) {
  qv::PairList{first_, second_, done_}.Add(first, second);
}

void CRvoFtpFiles::Empty() { qv::PairList{first_, second_, done_}.Empty(); }

CString CRvoFtpFiles::GetFailInfo(int kind, long count) {
  const auto succeeded = [this](const CString& path) {
    return qv::Ask(owner_->Get(), &IQvCoFtp::IsOperatorFileSuc, path) == qv::result::kFileSucceeded;
  };
  return qv::PairList{first_, second_, done_}.FailReport(qv::LabelOf(kLabels, kind), count,
                                                         succeeded);
}

CRvoFtp::CRvoFtp() : uploads_(&client_), downloads_(&client_), copies_(&client_) {}

CRvoFtp::~CRvoFtp() = default;

// Kept on purpose, here and in the next two calls: only the uploads are cleared.
long CRvoFtp::FtpLogin(CString host, CString user, CString password, short port) {
  uploads_.Empty();
  return qv::Ask(client_.Get(), &IQvCoFtp::FtpLogin, host, port, user, password);
}

long CRvoFtp::FtpLogout() {
  uploads_.Empty();
  return qv::Ask(client_.Get(), &IQvCoFtp::FtpLogout);
}

long CRvoFtp::AddFtpServer(CString host, long port, CString user, CString password) {
  uploads_.Empty();
  return qv::Ask(client_.Get(), &IQvCoFtp::AddFtpServer, host, static_cast<short>(port), user,
                 password);
}

long CRvoFtp::AddUploadFile(CString first, CString second) {
  return qv::AddPair(client_.Get(), &IQvCoFtp::AddUploadFile, uploads_, first, second);
}

long CRvoFtp::AddDownloadFile(CString first, CString second) {
  return qv::AddPair(client_.Get(), &IQvCoFtp::AddDownloadFile, downloads_, first, second);
}

long CRvoFtp::AddCopyServerFile(CString first, CString second) {
  return qv::AddPair(client_.Get(), &IQvCoFtp::AddCopyServerFile, copies_, first, second);
}

long CRvoFtp::UploadFile(long option, long& count) {
  const auto run = [=](IQvCoFtp& component, long* succeeded) {
    return component.UploadFile(option, succeeded);
  };
  return qv::RunQueue(client_.Get(), uploads_, qv::kUpload, count, run, qv::NoSuffix);
}

long CRvoFtp::DownloadFile(long option, long& count) {
  const auto run = [=](IQvCoFtp& component, long* succeeded) {
    return component.DownloadFile(qv::kDownloadConstant, option, succeeded);
  };
  return qv::RunQueue(client_.Get(), downloads_, qv::kDownload, count, run, qv::NoSuffix);
}

long CRvoFtp::CopyServerile(long option, long& count) {
  const auto run = [=](IQvCoFtp& component, long* succeeded) {
    return component.CopyServerFile(option, succeeded);
  };
  return qv::RunQueue(client_.Get(), copies_, qv::kCopy, count, run, qv::NoSuffix);
}

// The result of adding is ignored, here and in the next call.
long CRvoFtp::UploadOneFile(CString first, CString second, long option) {
  AddUploadFile(first, second);
  long count = 0;
  return UploadFile(option, count);
}

long CRvoFtp::DownloadOneFile(CString first, CString second, long option) {
  AddDownloadFile(first, second);
  long count = 0;
  return DownloadFile(option, count);
}

long CRvoFtp::DeleteServerFile(CString path) {
  const long result = qv::Ask(client_.Get(), &IQvCoFtp::DeleteServerFile, path);
  return qv::LogUnlessZero(result, "FtpDelFile Fail %s", path);
}

long CRvoFtp::DeleteServerPath(CString path) {
  const long result = qv::Ask(client_.Get(), &IQvCoFtp::DeleteServerPath, path);
  return qv::LogUnlessZero(result, "FtpDelPath Fail %s", path);
}

long CRvoFtp::RenameServerFile(CString old_path, CString new_path) {
  const long result = qv::Ask(client_.Get(), &IQvCoFtp::RenameServerFile, old_path, new_path);
  return qv::LogUnlessZero(result, "FtpRenFile Fail %s->%s", old_path, new_path);
}

// Kept on purpose: 1, which means success, is logged too.
long CRvoFtp::IsOperatorFileSuc(CString path) {
  const long result = qv::Ask(client_.Get(), &IQvCoFtp::IsOperatorFileSuc, path);
  return qv::LogUnlessZero(result, "Ftp_IsOperatorFileSuc Fail %s", path);
}

long CRvoFtp::SetFtpTransModel(int mode1, int mode2) {
  IQvCoFtp* const component = client_.Get();
  if (component == nullptr) return qv::result::kNoComponent;
  qv::Checked(component, component->SetTransModel1(mode1 == 1 ? 1 : 0));
  return qv::Checked(component, component->SetTransModel2(mode2 == 1 ? 1 : 0));
}

CString CRvoFtp::GetFailInfo(int kind, long count) {
  return qv::ReportOf({&uploads_, &downloads_, &copies_}, kind, count);
}
