#include <rapidxml/rapidxml.hpp>
#include <stdexcept>
#include <string_view>

#include "Peers.h"

namespace qv {

namespace {

using Node = rapidxml::xml_node<char>;
using Attribute = rapidxml::xml_attribute<char>;

std::string_view NameOf(const rapidxml::xml_base<char>& part) {
  return {part.name(), part.name_size()};
}

std::string_view ValueOf(const rapidxml::xml_base<char>& part) {
  return {part.value(), part.value_size()};
}

void FillFromAttributes(const Node& rows, PeerTable& table) {
  for (const Node* row = rows.first_node(); row != nullptr; row = row->next_sibling()) {
    table.BeginRow();
    for (const Attribute* cell = row->first_attribute(); cell != nullptr;
         cell = cell->next_attribute()) {
      table.Put(NameOf(*cell), ValueOf(*cell));
    }
    table.EndRow();
  }
}

void FillFromChildren(const Node& rows, PeerTable& table) {
  for (const Node* row = rows.first_node(); row != nullptr; row = row->next_sibling()) {
    if (NameOf(*row) != kSchemaRow) continue;
    table.BeginRow();
    for (const Node* cell = row->first_node(); cell != nullptr; cell = cell->next_sibling()) {
      table.Put(NameOf(*cell), ValueOf(*cell));
    }
    table.EndRow();
  }
}

}  // namespace

void FillWithRapidXml(Dialect dialect, KeptBuffer& buffer, PeerTable& table) {
  // parse_fastest would not decode entities. Nodes for texts and their terminators are not needed.
  constexpr int kFlags = rapidxml::parse_no_data_nodes | rapidxml::parse_no_string_terminators;
  rapidxml::xml_document<char> document;
  document.parse<kFlags>(buffer.Data());
  const Node* const root = document.first_node();
  if (root == nullptr) throw std::runtime_error("no document element");
  if (dialect == Dialect::kSchema) return FillFromChildren(*root, table);
  const Node* const data = root->first_node("rs:data");
  if (data == nullptr) throw std::runtime_error("no rows");
  FillFromAttributes(*data, table);
}

}  // namespace qv
