#include "FtpFolder.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/text/Letters.h"
#include "components/queue/RemoteStore.h"

namespace qv::components {

namespace {

// Limits for the listings of all folders together; a server that exceeds them is considered
// hostile. The names in a folder stay in memory while the folders below it are listed.
constexpr std::size_t kMostListed = 128U << 20;
constexpr std::size_t kMostEntries = 1'000'000;
constexpr int kDeepest = 64;

class ListingText final : public BodySink {
 public:
  explicit ListingText(std::size_t most) : most_(most) {}

  [[nodiscard]] bool Write(std::span<const char> bytes) override {
    if (bytes.size() > most_ - text_.size()) return false;
    text_.append(bytes.begin(), bytes.end());
    return true;
  }
  [[nodiscard]] const std::string& Text() const { return text_; }

 private:
  const std::size_t most_;
  std::string text_;
};

bool IsDots(std::string_view name) { return name == "." || name == ".."; }

// Returns true if a path names something below its start: it has a name, and no "." or "..".
bool IsProperFolder(std::string_view path) {
  bool has_name = false;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('/'), path.size());
    const std::string_view step = path.substr(0, end);
    if (IsDots(step)) return false;
    has_name |= !step.empty();
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return has_name;
}

// Returns the name that follows the facts, or nothing if there are none.
std::optional<std::string_view> BehindFacts(std::string_view line) {
  const std::size_t blank = line.find(' ');
  if (blank == std::string_view::npos) return std::nullopt;
  const std::string_view facts = line.substr(0, blank);
  // The folder itself and the one above may have any name in such a line.
  for (const char* const kind : {"type=cdir;", "type=pdir;"}) {
    if (text::FindIgnoringCase(facts, kind) != facts.npos) return ".";
  }
  return line.substr(blank + 1);
}

// Returns what follows the last slash, since some servers put the folder before each name.
std::string_view LastStep(std::string_view line) { return line.substr(line.rfind('/') + 1); }

class Removal {
 public:
  explicit Removal(FtpSession& session) : session_(session) {}

  QvTransferResult Remove(const std::string& folder, int depth) {
    if (depth > kDeepest) return QvTransfer_BadAnswer;
    std::vector<std::string> names;
    QvTransferResult result = List(folder, names);
    for (const std::string& name : names) {
      if (result != QvTransfer_Success) return result;
      result = RemoveEntry(folder + '/' + name, depth);
    }
    return result == QvTransfer_Success ? session_.Command("RMD " + folder).result : result;
  }

 private:
  // Tries to delete it as a file first, whatever the listing says: DELE removes a link to a folder,
  // while all other commands follow it.
  QvTransferResult RemoveEntry(const std::string& path, int depth) {
    const QvTransferResult result = session_.Command("DELE " + path).result;
    if (result != QvTransfer_Refused) return result;
    const QvTransferResult removed = Remove(path, depth + 1);
    return removed == QvTransfer_NotFound ? QvTransfer_Refused : removed;
  }

  QvTransferResult List(const std::string& folder, std::vector<std::string>& names) {
    for (; has_facts_; has_facts_ = false) {
      const FtpAnswer answer = Listing(folder, "MLSD", names);
      const bool is_unknown = answer.code >= 500 && answer.code <= 504;
      if (answer.result != QvTransfer_Refused || !is_unknown) return answer.result;
    }
    const FtpAnswer answer = Listing(folder, "NLST", names);
    // Some servers report an empty folder in this way.
    const bool is_empty = answer.code == 550 && answer.result == QvTransfer_Refused;
    return is_empty ? QvTransfer_Success : answer.result;
  }

  FtpAnswer Listing(const std::string& folder, const char* command,
                    std::vector<std::string>& names) {
    ListingText listing(kMostListed - listed_);
    FtpAnswer answer = session_.List(folder, command, listing);
    if (answer.result == QvTransfer_LocalFile) answer.result = QvTransfer_BadAnswer;
    if (answer.result != QvTransfer_Success) return answer;
    auto found = NamesInListing(listing.Text(), has_facts_, kMostEntries - entries_);
    if (!found) return {QvTransfer_BadAnswer, answer.code};
    listed_ += listing.Text().size();
    entries_ += found->size();
    names = std::move(*found);
    return answer;
  }

  FtpSession& session_;
  std::size_t listed_ = 0;
  std::size_t entries_ = 0;
  bool has_facts_ = true;
};

}  // namespace

std::optional<std::vector<std::string>> NamesInListing(const std::string& listing, bool has_facts,
                                                       std::size_t most) {
  std::vector<std::string> names;
  for (std::size_t start = 0; start < listing.size();) {
    const std::size_t end = std::min(listing.find('\n', start), listing.size());
    std::string_view line = std::string_view(listing).substr(start, end - start);
    start = end + 1;
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.empty()) continue;
    const auto name = has_facts ? BehindFacts(line) : LastStep(line);
    if (!name || name->empty() || name->find('/') != std::string_view::npos) return std::nullopt;
    if (text::HasControls(*name)) return std::nullopt;
    if (IsDots(*name)) continue;
    if (names.size() == most) return std::nullopt;
    names.emplace_back(*name);
  }
  return names;
}

QvTransferResult RemoveFtpFolder(FtpSession& session, const std::string& path) {
  if (!IsProperFolder(path)) return QvTransfer_BadArgument;
  std::string folder = path;
  while (folder.ends_with('/')) folder.pop_back();
  return Removal(session).Remove(folder, 0);
}

}  // namespace qv::components
