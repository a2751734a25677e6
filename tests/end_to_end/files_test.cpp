// Files, folders and identifiers, from the client's calls to the server's disk and back.
#include <algorithm>
#include <fstream>

#include "EndToEnd.h"
#include "message/LittleEndian.h"
#include "qvnetcall/standin/Records.h"
#include "tests/support/WholeFrame.h"

namespace qv {
namespace {

class FilesTest : public EndToEnd {
 protected:
  static constexpr const char kPack[] = "packs\\standard parts.zip";

  int Upload(const std::string& bytes, const char* path) const {
    return CRvoFile::UpLoadFileToServer(folder_.Write("up", bytes).c_str(), path);
  }
  std::string Download(const char* path) const {
    const std::string local = folder_.At("down");
    const int result = CRvoFile::DownLoadServerFile(local.c_str(), path);
    return result == 0 ? BytesOf(local) : "result " + std::to_string(result);
  }
  template <class Record>
  static std::string NamesOf(const Record* listed, int count, records::Field name) {
    const std::unique_ptr<const Record[]> records(listed);
    std::string names;
    const std::size_t size = records ? static_cast<std::size_t>(std::max(count, 0)) : 0;
    for (std::size_t i = 0; i < size; ++i) names += records::Text(records[i], name) + "|";
    return names;
  }
  static std::string Files(const char* folder, const char* pattern, int flag = 0) {
    int count = 0;
    const auto* const files = CRvoFolder::GetMatchFilesInFolder(folder, pattern, count, flag);
    return NamesOf(files, count, records::file::kName);
  }
  // Returns the names on a page, and how many names there are in all.
  static std::string Page(int option, int from, int to, int flag = 0) {
    CQvRvoBuf page;
    int all = 0;
    const int result = CRvoFolderEx::GetFilesInFolderEx("many", all, flag, option, from, to, &page);
    std::string names = std::to_string(result) + "/" + std::to_string(all) + ":";
    for (unsigned at = 0; at < page.m_size; at += sizeof(CZelkorSvrFileInfo)) {
      CZelkorSvrFileInfo record;
      std::copy_n(page.m_bytes + at, sizeof record, record.bytes);
      names += records::Text(record, records::file::kName);
    }
    return names;
  }

  std::unique_ptr<StandIn> server_ = Serve(Options());
};

std::string Pattern(std::size_t length) {
  std::string bytes(length, '\0');
  for (std::size_t i = 0; i < length; ++i) bytes[i] = static_cast<char>(i * i >> 7);
  return bytes;
}

TEST_F(FilesTest, GoUpAndComeDownAsTheyWere) {
  for (const std::size_t length : {0u, 1u, 65'535u, 65'536u, 65'537u, 5u << 20}) {
    const std::string bytes = Pattern(length);
    ASSERT_EQ(Upload(bytes, "drawings/structural\\新 图.dwg"), 0) << length;
    EXPECT_TRUE(Download("drawings\\structural\\新 图.dwg") == bytes) << length;
    CRvoIdFile::UpLoadFileToServerByFileID(folder_.At("up").c_str(), "新 图.dwg", 7);
    const std::string local = folder_.At("by id");
    ASSERT_EQ(CRvoIdFile::DownLoadServerFileByFileID(local.c_str(), "新 图.dwg", 7), 0);
    EXPECT_TRUE(BytesOf(local) == bytes) << length;
  }
  CZelkorSvrFileInfo info;
  ASSERT_EQ(CRvoFile::GetFileInfor("drawings\\structural\\新 图.dwg", &info), 1);
  EXPECT_EQ(records::Number(info, records::file::kSize), 5U << 20);
  EXPECT_EQ(records::Text(info, records::file::kName), "新 图.dwg");
  EXPECT_TRUE(std::filesystem::is_empty(folder_.Path() / "data/incoming"));
}

TEST_F(FilesTest, WhatCannotBeIsRefusedAndHarmsNothing) {
  EXPECT_EQ(Upload("x", "..\\out"), 1);
  EXPECT_EQ(Upload("x", "nowhere\\x"), 1);
  EXPECT_EQ(Upload("x", std::string(255, 'n').c_str()), 1);
  EXPECT_EQ(Upload("x", (std::string(150, 'n') + "\\" + std::string(150, 'n')).c_str()), 1);
  EXPECT_EQ(Download("nothing"), "result 2");
  EXPECT_EQ(CRvoFile::DeleteServerFile("drawings"), 1);
  EXPECT_EQ(CRvoFile::DeleteServerFile("readme.txt"), 0);
  EXPECT_EQ(CRvoFile::DeleteServerFile("readme.txt"), 1);
  CZelkorSvrFileInfo info;
  EXPECT_EQ(CRvoFile::GetFileInfor("drawings", &info), 0);
  EXPECT_EQ(Files("..", "*"), "");

  server_.reset();
  StandInOptions options = Options();
  options.upload_limit = 1000;
  server_ = Serve(options);
  EXPECT_EQ(Upload(std::string(1000, 'x'), "x"), 0);
  EXPECT_EQ(Upload(std::string(3 << 20, 'y'), "x"), 1);
  EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kTooLarge);
  EXPECT_EQ(Download("x"), std::string(1000, 'x'));
}

TEST_F(FilesTest, AnInterruptedUploadLeavesTheOldFile) {
  ASSERT_EQ(Upload("old", "x"), 0);
  WholeFrame frame;
  StoreU32(frame.block.data(), 100);
  frame.block[13] = 'x';
  MemoryStream sent;
  auto file = wire::OutgoingFile::Open(folder_.Write("new", std::string(300'000, 'n')));
  ASSERT_EQ(SendWhole(sent, wire::FrameKind::kRequest, frame, &*file), wire::FrameStatus::kDone);
  for (const std::size_t length : {sent.written.size() - 1, sent.written.size()}) {
    standin::ClientStream client(std::chrono::seconds(20));
    client.Peer().connect({boost::asio::ip::make_address("127.0.0.1"), server_->Port()});
    ASSERT_TRUE(client.Write({BytesOfText(sent.written).first(length)}));
    client.SayGoodbye();  // until the server has hung up
    EXPECT_EQ(Download("x").size(), length == sent.written.size() ? 300'000U : 3U);
  }
  server_.reset();
  EXPECT_TRUE(std::filesystem::is_empty(folder_.Path() / "data/incoming"));
}

TEST_F(FilesTest, FoldersAreListedMadeRenamedAndRemoved) {
  const auto folders = [](const char* path) {
    int count = 0;
    const auto* const listed = CRvoFolder::GetChildFolderInfo(count, path);
    return NamesOf(listed, count, records::folder::kName);
  };
  EXPECT_EQ(folders("."), "drawings|packs|reports|");
  EXPECT_EQ(folders(""), folders("."));
  EXPECT_EQ(folders("drawings"), "structural|建筑|");
  EXPECT_EQ(Files("drawings\\structural", "st-???.*"), "ST-001.txt|ST-002.txt|");
  EXPECT_EQ(Files("drawings/structural", "*.*", 1), "梁配筋图.txt|ST-002.txt|ST-001.txt|");
  EXPECT_EQ(Files("", "*"), "readme.txt|");
  EXPECT_EQ(CRvoFolder::NewOneFolder("项目\\a"), 0);
  EXPECT_EQ(CRvoFolder::NewOneFolder("项目"), 1);
  EXPECT_EQ(CRvoFolder::NewOneFolder("项目\\a"), 1);
  EXPECT_EQ(CRvoFile::CopyOneFile("readme.txt", "项目/a/read me"), 1);
  EXPECT_EQ(CRvoFile::RenOneFile("项目\\a\\read me", "readme.txt"), 0);
  EXPECT_EQ(CRvoFolder::RenOneFolder("项目\\a", "b"), 1);
  EXPECT_EQ(CRvoFile::RenOneFile("b\\read me", "项目\\c"), 1);
  EXPECT_EQ(CRvoFolder::DelOneFolder("项目"), 0);
  EXPECT_EQ(CRvoFolder::DelOneFolder("b"), 1);
  EXPECT_EQ(Download("项目\\c"), Download("readme.txt"));

  int count = 0;
  const auto* const listed = CRvoFolder::GetChildFolderInfo(count, ".");
  EXPECT_EQ(records::Number(listed[0], records::folder::kFlags), records::folder::kHasFolders);
  EXPECT_EQ(records::Number(listed[count - 1], records::folder::kFlags), 0U);
  delete[] listed;
  const auto* const stores = CRvoServer::GetSubStoreInfo(count, "*S");
  EXPECT_EQ(NamesOf(stores, count, records::sub_store::kName), "drawings|packs|reports|");
  CQvNetExeInfo info;
  EXPECT_EQ(CRvoServer::GetQvNetExeInfo(&info), 1);
  EXPECT_STREQ(info.m_text1, "qvstandin");
  EXPECT_STREQ(info.m_text3, ".");
}

TEST_F(FilesTest, LargeFoldersAreListedByPages) {
  const std::filesystem::path many = folder_.Path() / "data/files/many";
  std::filesystem::create_directory(many);
  for (int i = 0; i < 4; ++i) {
    const std::filesystem::path file = many / std::string(1, static_cast<char>('a' + i));
    std::ofstream(file) << std::string(static_cast<std::size_t>(i * 7 % 4), 'x');
    const auto hours = std::chrono::hours(i * i % 3 * 10 + i);
    std::filesystem::last_write_time(file, std::filesystem::file_time_type() + hours);
  }
  EXPECT_EQ(Page(0, 0, -1), "1/4:abcd");
  EXPECT_EQ(Page(0, 1, 2), "1/4:bc");
  EXPECT_EQ(Page(0, 1, 2, 1), "1/4:cb");
  EXPECT_EQ(Page(0, 3, 2'147'483'647), "1/4:d");
  EXPECT_EQ(Page(0, 4, 9), "0/4:");
  EXPECT_EQ(Page(1, 0, 1), "1/4:cb") << "newest first: a 0, b 11, c 12, d 3";
  EXPECT_EQ(Page(2, 0, -1), "1/4:bcda") << "largest first: a 0, b 3, c 2, d 1";
  EXPECT_EQ(Page(3, 0, -1), "0/0:");

  for (int i = 0; i < 4700; ++i) std::ofstream(many / std::to_string(i));
  EXPECT_EQ(Files("many", "*"), "") << "more than a reply holds";
  const std::string first = Page(0, 0, -1);
  EXPECT_TRUE(first.starts_with("1/4704:0110"));
  EXPECT_TRUE(Page(0, 4678, -1).ends_with("abcd"));
}

TEST_F(FilesTest, IdentifiersAndPacksHaveChecksumsAndPaths) {
  const std::string local = folder_.Write("local", "123456789");
  ASSERT_EQ(CRvoIdFile::UpLoadFileToServerByFileID(local.c_str(), "图.dwg", 1234567), 0);
  EXPECT_EQ(CRvoIdFile::UpLoadFileToServerByFileID(local.c_str(), "图.dwg", -1), 1);
  EXPECT_EQ(CRvoIdFile::UpLoadFileToServerByFileID(local.c_str(), "a\\b", 1), 1);
  EXPECT_EQ(CRvoIdFile::CopyIdFile(1234567, "图.dwg", 0, "copy"), 0);
  EXPECT_EQ(CRvoIdFile::CopyIdFile(5, "图.dwg", 0, "copy"), 21);
  EXPECT_EQ(CRvoIdFile::IsIdFileExist("copy", 0), 1);
  EXPECT_EQ(CRvoIdFile::DeleteServerFileByFileID("copy", 0), 0);
  EXPECT_EQ(CRvoIdFile::IsIdFileExist("copy", 0), 0);

  CString text;
  CString error;
  int size = 0;
  EXPECT_EQ(CRvoIdFileEx::GetIDFileCRC("图.dwg", 1234567, text, size, error), 1);
  EXPECT_STREQ(text, "CBF43926");
  EXPECT_EQ(size, 9);
  EXPECT_EQ(CRvoIdFileEx::GetIDFileSavePath("图.dwg", 1234567, text, error), 1);
  EXPECT_EQ(text, CRvoIdFile::GetIdFilePath(1234567) + "图.dwg");
  EXPECT_TRUE(error.IsEmpty());
  EXPECT_EQ(CRvoIdFileEx::GetIDFileSavePath("none", 1, text, error), 0);
  EXPECT_STREQ(error, "there is no such file");

  EXPECT_EQ(CRvoIdFileEx::CopyPackFileToIdFile(kPack, "螺母.txt", 7, "nut", 99, error), 1);
  EXPECT_EQ(CRvoIdFileEx::CopyPackFileToIdFile(kPack, "contents.txt", 0, "all", 99, error), 1);
  CString packed;
  EXPECT_EQ(CRvoIdFileEx::GetPackFileCRC(kPack, "螺母.txt", 7, packed, size, error), 1);
  EXPECT_EQ(size, 11);
  EXPECT_EQ(CRvoIdFileEx::GetIDFileCRC("nut", 99, text, size, error), 1);
  EXPECT_EQ(text, packed);
  EXPECT_EQ(CRvoIdFileEx::GetPackFileCRC(kPack, "nut.txt", 7, text, size, error), 0);
  EXPECT_STREQ(error, "there is no such file");
  EXPECT_EQ(CRvoIdFileEx::GetPackFileCRC("readme.txt", "a", 0, text, size, error), 0);
  EXPECT_STREQ(error, "the pack file cannot be read");
}

}  // namespace
}  // namespace qv
