#include "cli/LoadedFunction.h"

#include <dlfcn.h>

namespace qv {

void* FindLoadedFunction(const char* name) {
  static void* const program = dlopen(nullptr, RTLD_LAZY);
  return program != nullptr ? dlsym(program, name) : nullptr;
}

}  // namespace qv
