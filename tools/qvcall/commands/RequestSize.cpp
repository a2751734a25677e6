#include "RequestSize.h"

namespace qv::tool {
namespace {

// A field is a length, its bytes and a zero.
constexpr std::size_t FieldBytes(std::size_t length) { return length + 5; }
constexpr std::size_t kCountBytes = 4;

}  // namespace

RequestSize MeasureBatch(std::string_view database,
                         const std::vector<ScriptStatement>& statements) {
  RequestSize size{FieldBytes(database.size()) + FieldBytes(kCountBytes), 0};
  bool has_room = true;
  for (const ScriptStatement& statement : statements) {
    size.bytes += FieldBytes(statement.text.size());
    // The field that crosses the limit still goes, with all before it; those behind it are lost.
    if (has_room) ++size.fitting;
    has_room = has_room && size.bytes <= kRequestRoom;
  }
  return size;
}

}  // namespace qv::tool
