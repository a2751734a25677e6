// Where the bytes of an answer go.
#pragma once

#include <zlib.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "tools/qvstandin/common/ByteSink.h"

namespace qv::standin {

// The file of an answer: in memory while it is small, on disk once it is not.
class AnswerFile : public ByteSink {
 public:
  // What the names of all such files on disk end in.
  static constexpr const char* kExtension = ".answer";

  // Up to `memory_limit` bytes stay in memory; more go to a file of its own in `folder`, which is
  // removed with this object. More than `size_limit` bytes are refused.
  AnswerFile(std::string folder, std::uint64_t memory_limit, std::uint64_t size_limit);
  ~AnswerFile() override;
  AnswerFile(const AnswerFile&) = delete;
  AnswerFile& operator=(const AnswerFile&) = delete;

  bool Write(std::string_view bytes) override;
  bool Finish() override;

  [[nodiscard]] std::uint64_t Size() const { return size_; }
  [[nodiscard]] bool InMemory() const { return path_.empty(); }
  // All of it, while it is in memory.
  [[nodiscard]] const std::string& Bytes() const { return bytes_; }
  // Where it is, once it is on disk.
  [[nodiscard]] const std::string& Path() const { return path_; }

 private:
  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  [[nodiscard]] bool MoveToDisk();

  std::string folder_;
  std::uint64_t memory_limit_;
  std::uint64_t size_limit_;
  std::uint64_t size_ = 0;
  std::string bytes_;
  std::string path_;
  std::unique_ptr<std::FILE, Closer> file_;
};

// Packs what is written to it as one gzip member.
class GzipStream : public ByteSink {
 public:
  // The packed bytes go to `target`, which outlives this object and is finished with it.
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
