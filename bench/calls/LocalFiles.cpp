#include "LocalFiles.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>

namespace qv::bench {

namespace fs = std::filesystem;

namespace {

constexpr std::uint64_t kSmallFile = 4096;

}  // namespace

void WriteRandomFile(const std::string& path, std::uint64_t bytes) {
  std::ofstream file(path, std::ios::binary);
  std::mt19937_64 random;
  std::array<std::uint64_t, 8192> block;
  for (std::uint64_t left = bytes; left > 0 && file;) {
    std::ranges::generate(block, std::ref(random));
    const std::uint64_t now = std::min<std::uint64_t>(left, sizeof block);
    file.write(reinterpret_cast<const char*>(block.data()), static_cast<std::streamsize>(now));
    left -= now;
  }
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path);
}

std::string Tree::FolderName(int folder) { return fmt::format("folder{:02}", folder); }

std::string Tree::FileName(int file) { return fmt::format("drawing{:03}.dwg", file); }

void WriteTree(const std::string& path, const Tree& tree) {
  for (int folder = 0; folder < tree.folders; ++folder) {
    const fs::path inside = fs::path(path) / Tree::FolderName(folder);
    fs::create_directories(inside);
    for (int file = 0; file < tree.files; ++file) {
      WriteRandomFile(inside / Tree::FileName(file), kSmallFile);
    }
  }
}

void CheckTree(const std::string& path, const Tree& tree) {
  const auto is_file = [](const fs::directory_entry& entry) { return entry.is_regular_file(); };
  const auto found = std::count_if(fs::recursive_directory_iterator(path),
                                   fs::recursive_directory_iterator(), is_file);
  if (found != tree.Count()) throw std::runtime_error(fmt::format("{} files in {}", found, path));
}

}  // namespace qv::bench
