#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <string_view>

#include "CellEvents.h"
#include "Peers.h"

namespace qv {

namespace {

struct Freed {
  void operator()(xmlParserCtxt* context) const { xmlFreeParserCtxt(context); }
};
using Context = std::unique_ptr<xmlParserCtxt, Freed>;

const char* Chars(const xmlChar* text) { return reinterpret_cast<const char*>(text); }

void OnRow(void* user, const xmlChar* name, const xmlChar* prefix, const xmlChar*, int,
           const xmlChar**, int count, int, const xmlChar** attributes) {
  constexpr std::string_view kPrefix = kRowsetRow.substr(0, kRowsetRow.find(':'));
  constexpr std::string_view kName = kRowsetRow.substr(kPrefix.size() + 1);
  if (prefix == nullptr || kPrefix != Chars(prefix) || kName != Chars(name)) return;
  PeerTable& table = *static_cast<PeerTable*>(user);
  table.BeginRow();
  // Each has a name, a prefix, a namespace, and the two ends of its value.
  for (int i = 0; i < count; ++i, attributes += 5) {
    table.Put(Chars(attributes[0]), {Chars(attributes[3]), Chars(attributes[4])});
  }
  table.EndRow();
}

void OnStart(void* user, const xmlChar* name, const xmlChar*, const xmlChar*, int, const xmlChar**,
             int, int, const xmlChar**) {
  static_cast<CellEvents*>(user)->Start(Chars(name));
}

void OnText(void* user, const xmlChar* text, int length) {
  static_cast<CellEvents*>(user)->Text({Chars(text), static_cast<std::size_t>(length)});
}

void OnEnd(void* user, const xmlChar* name, const xmlChar*, const xmlChar*) {
  static_cast<CellEvents*>(user)->End(Chars(name));
}

// Events without a tree are this parser's fastest mode.
xmlSAXHandler HandlerFor(Dialect dialect) {
  xmlSAXHandler handler{};
  handler.initialized = XML_SAX2_MAGIC;
  if (dialect == Dialect::kRowset) {
    handler.startElementNs = OnRow;
    return handler;
  }
  handler.startElementNs = OnStart;
  handler.endElementNs = OnEnd;
  handler.characters = OnText;
  // With the same function for both, the parser does not tell them apart.
  handler.ignorableWhitespace = OnText;
  return handler;
}

// Makes the parser read the buffer itself; its usual functions would copy it.
void UseInPlace(xmlParserCtxt& context, KeptBuffer& buffer) {
  xmlParserInput* const input = xmlNewInputStream(&context);
  if (input == nullptr) throw std::bad_alloc();
  input->base = reinterpret_cast<const xmlChar*>(buffer.Data());
  input->cur = input->base;
  input->end = input->base + buffer.Size();
  inputPush(&context, input);
}

}  // namespace

void FillWithLibXml2(Dialect dialect, KeptBuffer& buffer, PeerTable& table) {
  const Context context(xmlNewParserCtxt());
  if (context == nullptr) throw std::bad_alloc();
  // Without XML_PARSE_NOENT, entities would not be decoded.
  xmlCtxtUseOptions(context.get(), XML_PARSE_HUGE | XML_PARSE_NOENT | XML_PARSE_NONET |
                                       XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
  *context->sax = HandlerFor(dialect);
  CellEvents events(table);
  if (dialect == Dialect::kRowset) {
    context->userData = &table;
  } else {
    context->userData = &events;
  }
  UseInPlace(*context, buffer);
  xmlParseDocument(context.get());
  if (context->wellFormed == 0) {
    const char* const message = context->lastError.message;
    throw std::runtime_error(message != nullptr ? message : "not well formed");
  }
}

}  // namespace qv
