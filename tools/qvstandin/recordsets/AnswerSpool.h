// Destinations of an answer's bytes.
#pragma once

#include <zlib.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/storage/OutputFile.h"
#include "tools/qvstandin/common/ByteSink.h"

namespace qv::standin {

// Keeps an answer in memory while it is small, and in a file otherwise.
class AnswerSpool : public AnswerSink {
 public:
  // The extension of these files.
  static constexpr const char* kExtension = ".answer";

  // Keeps up to `memory_limit` bytes in memory. A larger answer goes to a file in `folder`, which
  // the destructor removes. Write() fails beyond `size_limit` bytes, and ReplaceHead() when
  // `is_over`, which is asked while a file is copied, returns true.
  AnswerSpool(
      std::string folder, std::uint64_t memory_limit, std::uint64_t size_limit,
      std::function<bool()> is_over = [] { return false; });
  ~AnswerSpool() override;
  AnswerSpool(const AnswerSpool&) = delete;
  AnswerSpool& operator=(const AnswerSpool&) = delete;

  bool WriteHead(std::string_view head) override;
  bool Write(std::string_view bytes) override;
  bool ReplaceHead(std::string_view head) override;
  bool Finish() override;

  [[nodiscard]] std::uint64_t Size() const { return size_; }
  // Returns whether the last Write() or ReplaceHead() failed because of `size_limit`.
  [[nodiscard]] bool IsTooLarge() const { return is_too_large_; }
  [[nodiscard]] bool InMemory() const { return path_.empty(); }
  // Returns the whole answer if it is in memory.
  [[nodiscard]] const std::string& Bytes() const { return bytes_; }
  // Returns the path of the file; empty if the answer is in memory.
  [[nodiscard]] const std::string& Path() const { return path_; }

 private:
  [[nodiscard]] bool MoveToDisk();
  // Creates the file of the answer.
  [[nodiscard]] bool CreateFile();
  // Copies what follows the head from the file at `path`.
  [[nodiscard]] bool CopyBody(const std::string& path);

  std::string folder_;
  std::uint64_t memory_limit_;
  std::uint64_t size_limit_;
  std::function<bool()> is_over_;
  std::uint64_t size_ = 0;
  std::size_t head_size_ = 0;
  bool is_too_large_ = false;
  std::string bytes_;
  std::string path_;
  storage::OutputFile file_;
};

// Compresses what is written to it into one gzip member. The head is compressed by itself, so that
// it can be replaced without the rest.
class GzipStream : public AnswerSink {
 public:
  // The compressed bytes go to `target`, which outlives this object. Finish() finishes it as well.
  explicit GzipStream(AnswerSink& target);
  ~GzipStream() override;
  GzipStream(const GzipStream&) = delete;
  GzipStream& operator=(const GzipStream&) = delete;

  bool WriteHead(std::string_view head) override;
  bool Write(std::string_view bytes) override;
  bool ReplaceHead(std::string_view head) override;
  bool Finish() override;

 private:
  // One deflate stream.
  class Deflater {
   public:
    Deflater();
    ~Deflater();
    Deflater(const Deflater&) = delete;
    Deflater& operator=(const Deflater&) = delete;

    // Gives the packed bytes to `take`, which returns whether to go on.
    template <typename Take>
    [[nodiscard]] bool Run(std::string_view bytes, int flush, const Take& take);

   private:
    z_stream stream_{};
    bool ready_;
  };

  // Returns the gzip header and the packed head, or nothing without memory.
  [[nodiscard]] static std::string PackHead(Deflater& deflater, std::string_view head);

  AnswerSink& target_;
  Deflater deflater_;
  // The unpacked bytes in parts whose sizes zlib can count on every system. The first is the head.
  struct Part {
    uLong checksum = 0;
    std::size_t size = 0;
  };
  static void AddTo(Part& part, std::string_view bytes);
  std::vector<Part> parts_;
};

}  // namespace qv::standin
