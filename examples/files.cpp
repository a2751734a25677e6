// Stores a file on the server, finds it there and fetches it again. Usage: files SERVER PORT FILE
#include <qvnetcall/QvNetCall4.h>
#include <qvnetcall/standin/Records.h>  // the records as the stand-in server fills them

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

// Prints the files of a folder on the server. Paths on the server are written with backslashes.
void List(const char* folder) {
  int count = 0;
  // The caller owns the records.
  const std::unique_ptr<CZelkorSvrFileInfo[]> files(CRvoFolder::GetFilesInFolder(folder, count, 0));
  for (int i = 0; files != nullptr && i < count; ++i) {
    const CZelkorSvrFileInfo& file = files.get()[i];
    std::printf(
        "%s\\%s: %llu bytes\n", folder, qv::records::Text(file, qv::records::file::kName).c_str(),
        static_cast<unsigned long long>(qv::records::Number(file, qv::records::file::kSize)));
  }
}

// Says whether a step succeeded. Each call has the results that are documented where it is
// declared.
bool Done(const char* step, int result) {
  if (result == qv::result::kSuccess) return true;
  std::fprintf(stderr, "%s: %s\n", step, CRvoServer::GetLastErrorText().GetString());
  return false;
}

bool SendAndFetch(const char* file) {
  CRvoFolder::NewOneFolder("plans");  // fails if there is one already, which does no harm
  const std::string copy = std::string(file) + ".copy";
  if (!Done("upload", CRvoFile::UpLoadFileToServer(file, "plans\\pier.dwg"))) return false;
  List("plans");
  if (!Done("download", CRvoFile::DownLoadServerFile(copy.c_str(), "plans\\pier.dwg"))) {
    return false;
  }
  std::printf("fetched as %s\n", copy.c_str());
  if (!Done("deletion", CRvoFile::DeleteServerFile("plans\\pier.dwg"))) return false;
  CRvoFolder::DelOneFolder("plans");  // fails if there are other files in it
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return std::fputs("usage: files SERVER PORT FILE\n", stderr), 2;
  CRvoServer::InitNet();
  CRvoServer::SetConinfo(argv[1], std::atol(argv[2]));
  const bool done = SendAndFetch(argv[3]);
  CRvoServer::FinitNet();
  return done ? 0 : 1;
}
