#include <dlfcn.h>

#include "base/platform/Platform.h"

namespace qv::platform {

// Everything is bound at once, so that a library that lacks something is refused here and does not
// end the program later.
void* OpenLibrary(const std::string& path) { return ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL); }

void CloseLibrary(void* library) { ::dlclose(library); }

void* FindFunction(void* library, const char* name) { return ::dlsym(library, name); }

}  // namespace qv::platform
