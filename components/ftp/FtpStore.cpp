#include "FtpStore.h"

#include <algorithm>
#include <utility>

#include "FtpFolder.h"
#include "base/platform/Platform.h"

namespace qv::components {

namespace {

// The number of bytes at the end of a part that are compared with the server's file before it is
// resumed.
constexpr std::size_t kCompared = 16U << 10;

// Returns true if a later attempt can resume after this result.
bool IsWorthKeeping(QvTransferResult result) {
  return result == QvTransfer_Broken || result == QvTransfer_CannotConnect ||
         result == QvTransfer_Stopped;
}

std::string UniqueName() { return platform::NewGuid().substr(1, 36); }

// Returns the folder with a slash at the end.
std::string ParentOnServer(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

// Returns a unique path beside `path`. The name does not start with a dot, since some servers
// refuse such names.
std::string UploadPart(const std::string& path) {
  return ParentOnServer(path) + "qv-" + UniqueName() + ".part";
}

// Resumes a part only if the server starts with the bytes that the part ends with. Some servers
// accept the position and start at the beginning anyway.
class ContinuedTarget final : public BodySink {
 public:
  ContinuedTarget(LocalTarget& target, std::string tail)
      : target_(target), tail_(std::move(tail)) {}

  [[nodiscard]] bool Write(std::span<const char> bytes) override {
    const std::size_t again = std::min(bytes.size(), tail_.size() - compared_);
    has_differed_ |= tail_.compare(compared_, again, bytes.data(), again) != 0;
    compared_ += again;
    return !has_differed_ && target_.Write(bytes.subspan(again));
  }
  [[nodiscard]] bool HasDiffered() const { return has_differed_; }

 private:
  LocalTarget& target_;
  const std::string tail_;
  std::size_t compared_ = 0;
  bool has_differed_ = false;
};

// Maps the progress of one half of a copy, the download or the upload, to the whole.
class HalfWay final : public TransferMeter {
 public:
  HalfWay(TransferMeter& whole, bool is_second) : whole_(whole), is_second_(is_second) {}

  bool Moved(std::uint64_t done, std::uint64_t total) override {
    return whole_.Moved(is_second_ ? total / 2 + done / 2 : done / 2, total);
  }

 private:
  TransferMeter& whole_;
  bool is_second_;
};

// A file in the system's temporary folder that is removed with this object.
struct ScratchFile {
  const std::string path = platform::TempFolder() + "qv-" + UniqueName() + ".copy";

  ScratchFile() = default;
  ~ScratchFile() { platform::RemoveFile(path); }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;
};

}  // namespace

QvTransferResult FtpStore::Upload(const std::string& local, const std::string& remote,
                                  Resume& resume, TransferMeter& meter) {
  return Send(local, remote, is_text_, resume, meter);
}

QvTransferResult FtpStore::Download(const std::string& remote, const std::string& local,
                                    Resume& resume, TransferMeter& meter) {
  return Fetch(remote, local, is_text_, resume, meter);
}

QvTransferResult FtpStore::Send(const std::string& local, const std::string& remote, bool is_text,
                                Resume& resume, TransferMeter& meter) {
  auto source = LocalSource::Open(local);
  if (!source) return QvTransfer_LocalFile;
  QvTransferResult result = session_.Reach();
  if (result != QvTransfer_Success) return result;
  const std::string path = session_.Absolute(remote);
  if (path.ends_with('/')) return QvTransfer_BadArgument;
  if (resume.IsEmpty()) resume.part = UploadPart(path);
  result = FillPart(*source, is_text, resume, meter);
  if (result == QvTransfer_Success) result = Replace(resume.part, path);
  if (IsWorthKeeping(result)) return result;
  if (result != QvTransfer_Success) Abandon(remote, resume);
  resume = {};
  return result;
}

QvTransferResult FtpStore::FillPart(LocalSource& source, bool is_text, Resume& resume,
                                    TransferMeter& meter) {
  FtpTransfer transfer{.path = resume.part, .offset = 0, .size = source.Size(), .is_text = is_text};
  if (!is_text && resume.tag == source.State()) {
    const FtpFileState part = session_.Look(resume.part);
    if (IsWorthKeeping(part.result)) return part.result;
    if (part.size && *part.size <= source.Size()) transfer.offset = *part.size;
  }
  resume.tag = source.State();
  QvTransferResult result = QvTransfer_Success;
  if (transfer.offset == 0 || transfer.offset < transfer.size) {
    // Over TLS, a refused upload costs the connection.
    const bool is_new = !folders_.contains(ParentOnServer(resume.part));
    if (is_new && transfer.offset == 0) static_cast<void>(MakeFolders(resume.part));
    result = session_.Put(transfer, source, meter);
    // The folder may have been removed in the meantime.
    const bool is_refused = result == QvTransfer_Refused && !is_new && transfer.offset == 0;
    if (is_refused && MakeFolders(resume.part)) result = session_.Put(transfer, source, meter);
  }
  if (result != QvTransfer_Success || is_text) return result;
  const FtpFileState part = session_.Look(resume.part);
  if (IsWorthKeeping(part.result)) return part.result;
  if (part.result != QvTransfer_Success) return QvTransfer_BadAnswer;
  if (!part.size || *part.size == source.Size()) return QvTransfer_Success;
  // Too short: resume it. Too long, or a failed append: its content is unknown, so start over.
  if (*part.size > source.Size() || transfer.offset != 0) resume.tag.clear();
  return QvTransfer_Broken;
}

bool FtpStore::MakeFolders(const std::string& path) {
  bool is_any_new = false;
  for (std::size_t end = path.find('/', 1); end != std::string::npos;
       end = path.find('/', end + 1)) {
    is_any_new |= session_.Command("MKD " + path.substr(0, end)).result == QvTransfer_Success;
  }
  folders_.insert(ParentOnServer(path));
  return is_any_new;
}

// Not every server replaces an existing file. The old file is moved aside, not deleted, since the
// server may have refused for another reason. Only files have a size.
QvTransferResult FtpStore::Replace(const std::string& from, const std::string& to) {
  const QvTransferResult result = Rename(from, to);
  if (result != QvTransfer_Refused) return result;
  const FtpFileState old = session_.Look(to);
  if (IsWorthKeeping(old.result)) return old.result;
  if (!old.size) return result;
  const std::string aside = from + ".old";
  const QvTransferResult moved = Rename(to, aside);
  if (moved != QvTransfer_Success) return IsWorthKeeping(moved) ? moved : result;
  const QvTransferResult replaced = Rename(from, to);
  if (replaced == QvTransfer_Success) {
    static_cast<void>(session_.Command("DELE " + aside));
  } else {
    static_cast<void>(Rename(aside, to));
  }
  return replaced;
}

QvTransferResult FtpStore::Fetch(const std::string& remote, const std::string& local, bool is_text,
                                 Resume& resume, TransferMeter& meter) {
  QvTransferResult result = session_.Reach();
  if (result != QvTransfer_Success) return result;
  FtpTransfer transfer{
      .path = session_.Absolute(remote), .offset = 0, .size = 0, .is_text = is_text};
  std::optional<LocalTarget> target;
  result = GoOn(transfer, local, resume, target);
  if (result != QvTransfer_Success) return result;
  if (!target) target = LocalTarget::Create(local);
  if (!target) return QvTransfer_LocalFile;
  const auto tail = target->Tail(kCompared);
  if (!tail) return QvTransfer_LocalFile;
  transfer.offset = target->Size() - tail->size();
  ContinuedTarget sink(*target, *tail);
  const FtpFileState got = session_.Get(transfer, sink, meter);
  if (sink.HasDiffered()) {
    resume = {};
    return QvTransfer_Broken;
  }
  if (resume.tag.empty()) resume.tag = got.Tag();
  if (got.result == QvTransfer_Success) {
    resume = {};
    if (is_text || !got.size || *got.size == target->Size()) {
      return target->Finish() ? QvTransfer_Success : QvTransfer_LocalFile;
    }
    return QvTransfer_BadAnswer;
  }
  const bool is_kept = IsWorthKeeping(got.result) && !is_text && !resume.tag.empty();
  if (is_kept && target->Pause()) {
    resume.part = target->Part();
    resume.done = target->Size();
  } else {
    resume = {};
  }
  return got.result;
}

QvTransferResult FtpStore::GoOn(const FtpTransfer& transfer, const std::string& local,
                                Resume& resume, std::optional<LocalTarget>& target) {
  if (resume.IsEmpty()) return QvTransfer_Success;
  const FtpFileState now = session_.Look(transfer.path);
  if (IsWorthKeeping(now.result)) return now.result;
  if (!transfer.is_text && now.Tag() == resume.tag) {
    target = LocalTarget::Continue(local, resume.part, resume.done);
  }
  if (target) return QvTransfer_Success;
  platform::RemoveFile(resume.part);
  resume = {};
  return QvTransfer_Success;
}

QvTransferResult FtpStore::Copy(const std::string& from, const std::string& to, Resume&,
                                TransferMeter& meter) {
  const ScratchFile scratch;
  Resume resume;
  HalfWay here(meter, false);
  QvTransferResult result = Fetch(from, scratch.path, false, resume, here);
  if (!resume.IsEmpty()) platform::RemoveFile(resume.part);
  if (result != QvTransfer_Success) return result;
  resume = {};
  HalfWay back(meter, true);
  result = Send(scratch.path, to, false, resume, back);
  if (!resume.IsEmpty()) Abandon(to, resume);
  return result;
}

bool FtpStore::Abandon(const std::string&, const Resume& resume) {
  if (session_.Reach() != QvTransfer_Success) return false;
  return !IsWorthKeeping(session_.Command("DELE " + resume.part).result);
}

QvTransferResult FtpStore::Rename(const std::string& from, const std::string& to) {
  const QvTransferResult reached = session_.Reach();
  if (reached != QvTransfer_Success) return reached;
  const FtpAnswer named = session_.Command("RNFR " + session_.Absolute(from));
  if (named.code == 550) return QvTransfer_NotFound;
  if (named.result != QvTransfer_Success) return named.result;
  return session_.Command("RNTO " + session_.Absolute(to)).result;
}

QvTransferResult FtpStore::DeleteFile(const std::string& path) {
  const QvTransferResult reached = session_.Reach();
  if (reached != QvTransfer_Success) return reached;
  const std::string name = session_.Absolute(path);
  const QvTransferResult removed = session_.Command("DELE " + name).result;
  if (removed != QvTransfer_Refused) return removed;
  return session_.Look(name).result == QvTransfer_NotFound ? QvTransfer_NotFound : removed;
}

QvTransferResult FtpStore::DeleteFolder(const std::string& path) {
  const QvTransferResult reached = session_.Reach();
  if (reached != QvTransfer_Success) return reached;
  return RemoveFtpFolder(session_, session_.Absolute(path));
}

}  // namespace qv::components
