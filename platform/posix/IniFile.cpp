#include <ini.h>
#include <strings.h>

#include <cstring>
#include <memory>

#include "../Platform.h"

namespace qv::platform {

namespace {

struct Search {
  const char* section;
  const char* key;
  std::optional<std::string> value;
};

// The first entry counts, as on the system that the files come from.
int OnEntry(void* user, const char* section, const char* name, const char* value) {
  auto& search = *static_cast<Search*>(user);
  const bool wanted =
      ::strcasecmp(section, search.section) == 0 && ::strcasecmp(name, search.key) == 0;
  if (wanted && !search.value) search.value = value;
  return 1;
}

// Reads a line without its indentation: an indented entry is an entry, not the continuation of the
// one above.
char* ReadUnindentedLine(char* line, int size, void* stream) {
  if (std::fgets(line, size, static_cast<std::FILE*>(stream)) == nullptr) return nullptr;
  const std::size_t indentation = std::strspn(line, " \t");
  std::memmove(line, line + indentation, std::strlen(line + indentation) + 1);
  return line;
}

}  // namespace

std::optional<std::string> ReadIniValue(const std::string& path, const char* section,
                                        const char* key) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                             &std::fclose);
  if (!file) return std::nullopt;
  Search search{section, key, std::nullopt};
  // Lines that are no entries are passed over, so the parser's own verdict does not matter.
  ini_parse_stream(&ReadUnindentedLine, file.get(), &OnEntry, &search);
  return search.value;
}

}  // namespace qv::platform
