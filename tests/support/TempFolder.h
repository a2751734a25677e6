// A new folder for the files of one test, which is removed with its content, and helpers for files.
#pragma once

#include <filesystem>
#include <string>

namespace qv {

class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& Path() const { return path_; }
  // The path of an entry, as the library takes paths.
  [[nodiscard]] std::string At(const std::filesystem::path& name = {}) const;
  // Writes a file of that name and returns its path.
  std::string Write(const std::string& name, const std::string& bytes) const;

 private:
  std::filesystem::path path_;
};

// Returns the bytes of a file; empty if it cannot be read.
[[nodiscard]] std::string BytesOf(const std::string& path);

// Returns a gzip file with one member that holds `text`.
std::string Gzipped(const std::string& text);

}  // namespace qv
