// Packs what is written to it as one gzip member.
#pragma once

#include <zlib.h>

#include "tools/qvstandin/common/ByteSink.h"

namespace qv::standin {

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
