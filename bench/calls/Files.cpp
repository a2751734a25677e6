#include <fmt/format.h>

#include "Groups.h"
#include "LocalFiles.h"
#include "peers/WebClient.h"

namespace qv::bench {

namespace {

struct Size {
  std::string name;
  std::uint64_t bytes;
  Length length;
  Target target;
};

constexpr std::uint64_t kMiB = 1 << 20;

Size SmallSize() { return {"4 KiB", 4096, Length::kShort, {}}; }

Size LargeSize(bool quick) {
  return {quick ? "32 MiB" : "1 GiB",
          quick ? 32 * kMiB : 1024 * kMiB,
          Length::kLong,
          {.ratio_at_most = 1.1}};
}

// The names of a file of one size: at home, on the servers, and at home again.
struct Names {
  std::string local;
  std::string remote;
  std::string back;
};

void AddSize(Group& group, const Bench& bench, const Size& size,
             const std::shared_ptr<WebClient>& web) {
  const std::string stem = fmt::format("{}/file{}", bench.setting.store_folder, size.bytes);
  const Names names{stem, fmt::format("file{}", size.bytes), stem + ".back"};
  WriteRandomFile(names.local, size.bytes);
  const auto prepare = [port = bench.setting.store_port] { Host::UsePort(port); };
  prepare();
  Upload(names.local, names.remote);  // so that downloads may come first
  web->Upload(names.local, names.remote);
  const auto compare = [&](const char* what, auto ours, auto peer) {
    const auto work = [&](auto call) {
      return group.Add(
          {.prepare = prepare, .call = [=](std::size_t) { call(names); }, .length = size.length});
    };
    group.Compare({fmt::format("{}, {}", what, size.name), "libcurl on nginx", size.target},
                  work(ours), work(peer));
  };
  compare(
      "upload", [](const Names& file) { Upload(file.local, file.remote); },
      [web](const Names& file) { web->Upload(file.local, file.remote); });
  compare(
      "download", [](const Names& file) { Download(file.back, file.remote); },
      [web](const Names& file) { web->Download(file.back, file.remote); });
}

}  // namespace

void AddFiles(Group& group, const Bench& bench) {
  const auto web = std::make_shared<WebClient>(bench.setting.web_port);
  AddSize(group, bench, SmallSize(), web);
  AddSize(group, bench, LargeSize(bench.quick), web);
}

}  // namespace qv::bench
