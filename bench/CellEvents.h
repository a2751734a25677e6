// Follows the elements of the schema dialect for parsers that report them one by one.
#pragma once

#include <string>
#include <string_view>

#include "PeerTable.h"

namespace qv {

class CellEvents {
 public:
  explicit CellEvents(PeerTable& table) : table_(table) {}

  void Start(std::string_view name) {
    if (place_ == Place::kRow) {
      place_ = Place::kCell;
      text_.clear();
    } else if (place_ == Place::kOutside && name == kSchemaRow) {
      place_ = Place::kRow;
      table_.BeginRow();
    }
  }

  // A text may come in several pieces.
  void Text(std::string_view piece) {
    if (place_ == Place::kCell) text_.append(piece);
  }

  void End(std::string_view name) {
    if (place_ == Place::kCell) {
      place_ = Place::kRow;
      table_.Put(name, text_);
    } else if (place_ == Place::kRow) {
      place_ = Place::kOutside;
      table_.EndRow();
    }
  }

 private:
  enum class Place { kOutside, kRow, kCell };

  PeerTable& table_;
  Place place_ = Place::kOutside;
  std::string text_;
};

}  // namespace qv
