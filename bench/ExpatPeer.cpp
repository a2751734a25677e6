#include <expat.h>

#include <limits>
#include <memory>
#include <new>
#include <stdexcept>
#include <type_traits>

#include "CellEvents.h"
#include "Peers.h"

namespace qv {

namespace {

struct Freed {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};
using Parser = std::unique_ptr<std::remove_pointer_t<XML_Parser>, Freed>;

void XMLCALL OnRow(void* user, const XML_Char* name, const XML_Char** attributes) {
  if (kRowsetRow != name) return;
  PeerTable& table = *static_cast<PeerTable*>(user);
  table.BeginRow();
  for (; *attributes != nullptr; attributes += 2) table.Put(attributes[0], attributes[1]);
  table.EndRow();
}

void XMLCALL OnStart(void* user, const XML_Char* name, const XML_Char**) {
  static_cast<CellEvents*>(user)->Start(name);
}

void XMLCALL OnText(void* user, const XML_Char* text, int length) {
  static_cast<CellEvents*>(user)->Text({text, static_cast<std::size_t>(length)});
}

void XMLCALL OnEnd(void* user, const XML_Char* name) { static_cast<CellEvents*>(user)->End(name); }

}  // namespace

void FillWithExpat(Dialect dialect, KeptBuffer& buffer, PeerTable& table) {
  if (buffer.Size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
    throw std::runtime_error("too large for one piece");
  }
  const Parser parser(XML_ParserCreate("UTF-8"));
  if (parser == nullptr) throw std::bad_alloc();
  CellEvents events(table);
  if (dialect == Dialect::kRowset) {
    XML_SetUserData(parser.get(), &table);
    XML_SetStartElementHandler(parser.get(), OnRow);
  } else {
    XML_SetUserData(parser.get(), &events);
    XML_SetElementHandler(parser.get(), OnStart, OnEnd);
    XML_SetCharacterDataHandler(parser.get(), OnText);
  }
  // If the first piece is also the last, the parser works on the buffer itself instead of a copy.
  if (XML_Parse(parser.get(), buffer.Data(), static_cast<int>(buffer.Size()), XML_TRUE) !=
      XML_STATUS_OK) {
    throw std::runtime_error(XML_ErrorString(XML_GetErrorCode(parser.get())));
  }
}

}  // namespace qv
