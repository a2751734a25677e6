#include <pugixml.hpp>
#include <stdexcept>

#include "Peers.h"

namespace qv {

namespace {

void FillFromAttributes(const pugi::xml_node& rows, PeerTable& table) {
  for (pugi::xml_node row = rows.first_child(); row; row = row.next_sibling()) {
    table.BeginRow();
    for (pugi::xml_attribute cell = row.first_attribute(); cell; cell = cell.next_attribute()) {
      table.Put(cell.name(), cell.value());
    }
    table.EndRow();
  }
}

void FillFromChildren(const pugi::xml_node& rows, PeerTable& table) {
  for (pugi::xml_node row = rows.first_child(); row; row = row.next_sibling()) {
    if (kSchemaRow != row.name()) continue;
    table.BeginRow();
    for (pugi::xml_node cell = row.first_child(); cell; cell = cell.next_sibling()) {
      table.Put(cell.name(), cell.value());
    }
    table.EndRow();
  }
}

}  // namespace

void FillWithPugixml(Dialect dialect, KeptBuffer& buffer, PeerTable& table) {
  // An element's text in the element itself spares a node for every cell.
  constexpr unsigned kOptions =
      pugi::parse_minimal | pugi::parse_escapes | pugi::parse_embed_pcdata;
  pugi::xml_document document;
  const pugi::xml_parse_result parsed =
      document.load_buffer_inplace(buffer.Data(), buffer.Size(), kOptions, pugi::encoding_utf8);
  if (!parsed) throw std::runtime_error(parsed.description());
  const pugi::xml_node root = document.document_element();
  if (dialect == Dialect::kRowset) return FillFromAttributes(root.child("rs:data"), table);
  FillFromChildren(root, table);
}

}  // namespace qv
