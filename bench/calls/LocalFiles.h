// Files of this program.
#pragma once

#include <cstdint>
#include <string>

namespace qv::bench {

// Writes a file of `bytes` bytes, in which nothing repeats. Throws std::runtime_error.
void WriteRandomFile(const std::string& path, std::uint64_t bytes);

// A folder of folders of files, as a design project has it.
struct Tree {
  int folders;
  int files;  // in each folder

  [[nodiscard]] int Count() const { return folders * files; }
  [[nodiscard]] static std::string FolderName(int folder);
  [[nodiscard]] static std::string FileName(int file);
};

// Throws std::runtime_error or std::filesystem::filesystem_error.
void WriteTree(const std::string& path, const Tree& tree);
// Throws std::runtime_error unless there are as many files below `path`.
void CheckTree(const std::string& path, const Tree& tree);

}  // namespace qv::bench
