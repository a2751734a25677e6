// Hosts compile against the version that the build and the package manifest state.
#include "qvnetcall/Version.h"

#include <string_view>

static_assert(QVNETCALL_VERSION_MAJOR == BUILD_MAJOR);
static_assert(QVNETCALL_VERSION_MINOR == BUILD_MINOR);
static_assert(QVNETCALL_VERSION_PATCH == BUILD_PATCH);
static_assert(std::string_view(QVNETCALL_VERSION_TEXT) == BUILD_TEXT);
static_assert(std::string_view(QVNETCALL_VERSION_TEXT) == MANIFEST_TEXT);
