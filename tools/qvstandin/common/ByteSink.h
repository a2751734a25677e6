// Where the bytes of an answer go.
#pragma once

#include <string_view>

namespace qv::standin {

class ByteSink {
 public:
  virtual ~ByteSink() = default;
  // False when the bytes could not be kept; nothing that follows makes up for it.
  [[nodiscard]] virtual bool Write(std::string_view bytes) = 0;
  // Sees to it that all that was written has arrived. Once, at the end.
  [[nodiscard]] virtual bool Finish() = 0;
};

}  // namespace qv::standin
