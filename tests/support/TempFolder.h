// A fresh folder for the files of one test, removed with all that it holds; and what is in files.
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
  // The path of what stands in it, as the library takes paths.
  [[nodiscard]] std::string At(const std::filesystem::path& name = {}) const;
  // Writes a file of that name and gives its path.
  std::string Write(const std::string& name, const std::string& bytes) const;

 private:
  std::filesystem::path path_;
};

// The bytes of a file; empty when it cannot be read.
[[nodiscard]] std::string BytesOf(const std::string& path);

// A gzip file of one member that holds `text`.
std::string Gzipped(const std::string& text);

}  // namespace qv
