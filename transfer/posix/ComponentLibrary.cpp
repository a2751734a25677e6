#include "ComponentLibrary.h"

#include "base/platform/Platform.h"

namespace qv {

void* FindFactory(const char* file, const char* function) {
  const std::string folder = platform::ProgramFolder();
  // Without its folder the loader would look for the file wherever it likes.
  if (folder.empty()) return nullptr;
  void* const library = platform::OpenLibrary(folder + file);
  if (library == nullptr) return nullptr;
  void* const factory = platform::FindFunction(library, function);
  if (factory == nullptr) platform::CloseLibrary(library);
  return factory;
}

}  // namespace qv
