// Destinations of an answer's bytes.
#pragma once

#include <zlib.h>

#include <cstdint>
#include <string>

#include "base/storage/OutputFile.h"
#include "tools/qvstandin/common/ByteSink.h"

namespace qv::standin {

// Keeps an answer in memory while it is small, and in a file otherwise.
class AnswerSpool : public ByteSink {
 public:
  // The extension of these files.
  static constexpr const char* kExtension = ".answer";

  // Keeps up to `memory_limit` bytes in memory. A larger answer goes to a file in `folder`, which
  // the destructor removes. Write() fails beyond `size_limit` bytes.
  AnswerSpool(std::string folder, std::uint64_t memory_limit, std::uint64_t size_limit);
  ~AnswerSpool() override;
  AnswerSpool(const AnswerSpool&) = delete;
  AnswerSpool& operator=(const AnswerSpool&) = delete;

  bool Write(std::string_view bytes) override;
  bool Finish() override;

  [[nodiscard]] std::uint64_t Size() const { return size_; }
  [[nodiscard]] bool InMemory() const { return path_.empty(); }
  // Returns the whole answer if it is in memory.
  [[nodiscard]] const std::string& Bytes() const { return bytes_; }
  // Returns the path of the file; empty if the answer is in memory.
  [[nodiscard]] const std::string& Path() const { return path_; }

 private:
  [[nodiscard]] bool MoveToDisk();

  std::string folder_;
  std::uint64_t memory_limit_;
  std::uint64_t size_limit_;
  std::uint64_t size_ = 0;
  std::string bytes_;
  std::string path_;
  storage::OutputFile file_;
};

// Compresses what is written to it into one gzip member.
class GzipStream : public ByteSink {
 public:
  // The compressed bytes go to `target`, which outlives this object. Finish() finishes it as well.
  explicit GzipStream(ByteSink& target);
  ~GzipStream() override;
  GzipStream(const GzipStream&) = delete;
  GzipStream& operator=(const GzipStream&) = delete;

  bool Write(std::string_view bytes) override;
  bool Finish() override;

 private:
  [[nodiscard]] bool Deflate(std::string_view bytes, int flush);

  ByteSink& target_;
  z_stream stream_{};
  bool ready_;
};

}  // namespace qv::standin
