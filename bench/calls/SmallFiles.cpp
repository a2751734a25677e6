#include <fmt/format.h>
#include <qvnetcall/QvNetCall4.h>
#include <qvnetcall/standin/Records.h>

#include <atomic>
#include <exception>
#include <filesystem>
#include <functional>
#include <thread>
#include <vector>

#include "Groups.h"
#include "LocalFiles.h"
#include "peers/Programs.h"
#include "peers/WebClient.h"

namespace qv::bench {

namespace {

namespace fs = std::filesystem;

// The files that are moved at once; rclone's own choice.
constexpr int kAtOnce = 4;
constexpr const char* kUp = "up";
constexpr const char* kDown = "down";

// Runs `act` for the folders 0 to `count` - 1 on a few threads.
void ForEachFolder(int count, const std::function<void(int)>& act) {
  std::atomic<int> next = 0;
  std::vector<std::exception_ptr> failures(kAtOnce);
  {
    std::vector<std::jthread> threads;
    for (std::exception_ptr& failure : failures) {
      threads.emplace_back([&] {
        try {
          for (int i = next++; i < count; i = next++) act(i);
        } catch (...) {
          failure = std::current_exception();
        }
      });
    }
  }
  for (const std::exception_ptr& failure : failures) {
    if (failure != nullptr) std::rethrow_exception(failure);
  }
}

void NewFolder(const std::string& path) {
  CheckResult("NewOneFolder", CRvoFolder::NewOneFolder(path.c_str()) == 1);
}

void UploadTree(const std::string& local, const std::string& remote, const Tree& tree) {
  NewFolder(remote);
  ForEachFolder(tree.folders, [&](int folder) {
    const std::string name = Tree::FolderName(folder);
    NewFolder(remote + "\\" + name);
    for (const auto& entry : fs::directory_iterator(local + "/" + name)) {
      Upload(entry.path(), remote + "\\" + name + "\\" + entry.path().filename().string());
    }
  });
}

void UploadTreeToWeb(std::uint16_t port, const std::string& local, const std::string& remote,
                     const Tree& tree) {
  ForEachFolder(tree.folders, [&](int folder) {
    thread_local WebClient web(port);
    const std::string name = Tree::FolderName(folder);
    for (const auto& entry : fs::directory_iterator(local + "/" + name)) {
      web.Upload(entry.path(), remote + "/" + name + "/" + entry.path().filename().string());
    }
  });
}

void DownloadFolder(const std::string& local, const std::string& remote) {
  int count = 0;
  const std::unique_ptr<CZelkorSvrFileInfo[]> files(
      CRvoFolder::GetFilesInFolder(remote.c_str(), count, 0));
  CheckResult("GetFilesInFolder", files != nullptr);
  fs::create_directories(local);
  for (int i = 0; i < count; ++i) {
    const std::string name =
        qv::records::Text(files[static_cast<std::size_t>(i)], qv::records::file::kName);
    Download(local + "/" + name, remote + "\\" + name);
  }
}

void DownloadTree(const std::string& local, const std::string& remote) {
  int count = 0;
  const std::unique_ptr<CZelkorSvrFolderInfo[]> folders(
      CRvoFolder::GetChildFolderInfo(count, remote.c_str()));
  CheckResult("GetChildFolderInfo", folders != nullptr);
  ForEachFolder(count, [&](int folder) {
    const std::string name =
        qv::records::Text(folders[static_cast<std::size_t>(folder)], qv::records::folder::kName);
    DownloadFolder(local + "/" + name, remote + "\\" + name);
  });
}

std::size_t Add(Group& group, std::function<void()> prepare, std::function<void()> call) {
  return group.Add({.prepare = std::move(prepare),
                    .call = [call = std::move(call)](std::size_t) { call(); },
                    .length = Length::kLong});
}

void AddUploads(Group& group, const Bench& bench, const std::string& local, const Tree& tree) {
  const Setting& setting = bench.setting;
  const std::string url = fmt::format("http://127.0.0.1:{}", setting.web_port);
  const std::size_t ours = Add(
      group,
      [&setting] {
        fs::remove_all(setting.store_root + "/" + kUp);
        Host::UsePort(setting.store_port);
      },
      [local, tree, &setting] {
        UploadTree(local, kUp, tree);
        CheckTree(setting.store_root + "/" + kUp, tree);
      });
  // rclone itself waits 10 ms before each request of a protocol in which it can upload.
  const std::size_t peer = Add(
      group, [&setting] { fs::remove_all(setting.web_root + "/" + kUp); },
      [local, tree, &setting] {
        UploadTreeToWeb(setting.web_port, local, kUp, tree);
        CheckTree(setting.web_root + "/" + kUp, tree);
      });
  group.Compare({fmt::format("upload, {} files of 4 KiB", tree.Count()), "libcurl on nginx", {}},
                ours, peer);
}

void AddDownloads(Group& group, const Bench& bench, const std::string& local, const Tree& tree) {
  const Setting& setting = bench.setting;
  Host::UsePort(setting.store_port);
  UploadTree(local, kDown, tree);
  fs::copy(local, setting.web_root + "/" + kDown, fs::copy_options::recursive);
  const std::string url = fmt::format("http://127.0.0.1:{}/{}/", setting.web_port, kDown);
  const std::string back = setting.store_folder + "/back";
  const std::size_t ours = Add(
      group,
      [back, &setting] {
        fs::remove_all(back);
        Host::UsePort(setting.store_port);
      },
      [back, tree] {
        DownloadTree(back, kDown);
        CheckTree(back, tree);
      });
  const std::size_t peer = Add(
      group, [back] { fs::remove_all(back); },
      [back, tree, url] {
        RunProgram({"rclone", "copy", ":http:", back, "--http-url=" + url, "--http-no-head",
                    "--config=/dev/null", fmt::format("--transfers={}", kAtOnce)});
        CheckTree(back, tree);
      });
  group.Compare({fmt::format("download, {} files of 4 KiB", tree.Count()), "rclone on nginx", {}},
                ours, peer);
}

}  // namespace

void AddSmallFiles(Group& group, const Bench& bench) {
  const Tree tree{.folders = 50, .files = bench.quick ? 4 : 100};
  const std::string local = bench.setting.store_folder + "/tree";
  WriteTree(local, tree);
  AddUploads(group, bench, local, tree);
  AddDownloads(group, bench, local, tree);
}

}  // namespace qv::bench
