#include "ColumnTypes.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "base/text/Letters.h"

namespace qv::standin {

namespace {

struct KnownType {
  std::string_view name;
  ColumnKind kind;
};

constexpr std::array kKnownTypes{
    KnownType{"int", ColumnKind::kInt32},         KnownType{"integer", ColumnKind::kInt32},
    KnownType{"bigint", ColumnKind::kInt64},      KnownType{"smallint", ColumnKind::kInt16},
    KnownType{"tinyint", ColumnKind::kUint8},     KnownType{"boolean", ColumnKind::kBoolean},
    KnownType{"bit", ColumnKind::kBoolean},       KnownType{"real", ColumnKind::kDouble},
    KnownType{"double", ColumnKind::kDouble},     KnownType{"float", ColumnKind::kDouble},
    KnownType{"float4", ColumnKind::kSingle},     KnownType{"decimal", ColumnKind::kDouble},
    KnownType{"numeric", ColumnKind::kDouble},    KnownType{"date", ColumnKind::kDate},
    KnownType{"datetime", ColumnKind::kDateTime}, KnownType{"timestamp", ColumnKind::kDateTime},
    KnownType{"char", ColumnKind::kFixedText},    KnownType{"nchar", ColumnKind::kFixedText},
    KnownType{"varchar", ColumnKind::kText},      KnownType{"nvarchar", ColumnKind::kText},
    KnownType{"text", ColumnKind::kLongText},     KnownType{"blob", ColumnKind::kBinary},
};

}  // namespace

std::optional<DeclaredType> ParseDeclaredType(std::string_view type) {
  const std::size_t bracket = type.find('(');
  const std::string_view name = type.substr(0, type.find_first_of(" ("));
  const auto known = std::ranges::find_if(kKnownTypes, [name](const KnownType& candidate) {
    return text::EqualIgnoringCase(name, candidate.name);
  });
  if (known == kKnownTypes.end()) return std::nullopt;
  std::uint32_t length = 0;
  if (bracket != std::string_view::npos) {
    std::from_chars(type.data() + bracket + 1, type.data() + type.size(), length);
  }
  return DeclaredType{known->kind, length};
}

}  // namespace qv::standin
