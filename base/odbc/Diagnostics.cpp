#include "Diagnostics.h"

namespace qv::odbc {

std::string TextOf(const Diagnostics& diagnostics) {
  std::string text;
  for (const Diagnostic& diagnostic : diagnostics) {
    if (!text.empty()) text += ' ';
    text += '[' + diagnostic.state + "] " + diagnostic.text;
  }
  return text;
}

}  // namespace qv::odbc
