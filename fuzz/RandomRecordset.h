// Random recordset files of both dialects, and damage to them. In one build, the same seed gives
// the same files.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace qv {

class RandomRecordset {
 public:
  explicit RandomRecordset(std::uint32_t seed) : engine_(seed) {}

  [[nodiscard]] std::string Rowset();
  [[nodiscard]] std::string Schema();
  // `file` with a few bytes or markers lost, doubled, moved or put in.
  [[nodiscard]] std::string Damaged(std::string file);

 private:
  struct Field {
    std::string name;
    std::string_view type;
  };

  std::size_t Below(std::size_t limit) { return limit == 0 ? 0 : engine_() % limit; }
  bool OneIn(std::size_t count) { return Below(count) == 0; }
  std::string_view Pick(const std::vector<std::string_view>& choices) {
    return choices[Below(choices.size())];
  }

  // Mostly few rows, sometimes more than there are bits in a word.
  std::size_t RowCount() { return OneIn(40) ? 60 + Below(80) : Below(7); }
  std::vector<Field> Fields(const std::vector<std::string_view>& types);
  std::string Name(std::size_t number);
  std::string Value(std::string_view type);
  std::string Date();
  std::string Text();
  std::string Hex();
  std::string Base64();
  std::string Quoted(std::string value);
  std::string AttributeType(const Field& field);
  std::string Row(const std::vector<Field>& fields);
  std::string Element(const Field& field);
  std::string TaggedRow(std::string_view tag, const std::vector<Field>& fields);
  void DamageOnce(std::string& file);

  std::mt19937 engine_;
};

}  // namespace qv
