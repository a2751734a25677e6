#include "qvnetcall/QvNetExeInfo.h"

#include <cstdio>
#include <string_view>

#include "base/platform/Folder.h"
#include "base/text/Numbers.h"

namespace {

constexpr int kLineBuffer = 300;

qv::platform::FilePtr OpenText(const char* path, const char* mode) {
  return qv::platform::FilePtr(path != nullptr ? std::fopen(path, mode) : nullptr);
}

class LineReader {
 public:
  explicit LineReader(std::FILE* file) : file_(file) {}

  void Read(CString& out) {
    std::string_view line = Next();
    if (!line.empty()) line.remove_suffix(1);
    out = CString(line);
  }
  void Read(int& out) { out = qv::text::DecimalToInt32(Next()); }

 private:
  // After the end of the file the buffer keeps the last line.
  std::string_view Next() {
    if (std::fgets(buffer_, sizeof buffer_, file_) == nullptr && std::ferror(file_) != 0) return {};
    return buffer_;
  }

  std::FILE* file_;
  char buffer_[kLineBuffer] = {};
};

void Write(std::FILE* file, const CString& text) {
  std::fprintf(file, "%s\n", static_cast<const char*>(text));
}
void Write(std::FILE* file, int number) { std::fprintf(file, "%d\n", number); }

// Calls `act` for each member, in the order of the file's lines.
template <class Info, class Act>
void ForEachMember(Info& info, Act act) {
  act(info.m_text1);
  act(info.m_number2);
  act(info.m_text3);
  act(info.m_server);
  act(info.m_port);
  act(info.m_number6);
  act(info.m_number7);
  act(info.m_text8);
  act(info.m_text9);
}

}  // namespace

int CQvNetExeInfo::SaveData(const char* path) const {
  const qv::platform::FilePtr file = OpenText(path, "wt");
  if (file == nullptr) return 0;
  ForEachMember(*this, [&](const auto& member) { Write(file.get(), member); });
  return 1;
}

int CQvNetExeInfo::LoadData(const char* path) {
  const qv::platform::FilePtr file = OpenText(path, "rt");
  if (file == nullptr) return 0;
  LineReader lines(file.get());
  ForEachMember(*this, [&](auto& member) { lines.Read(member); });
  return 1;
}
