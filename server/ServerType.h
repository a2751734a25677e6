// Which transport the module's server is reached over.
#pragma once

namespace qv {

// Whether the module's server is a web server; looks its type up, which may read the configuration
// or probe the server.
[[nodiscard]] bool IsWebServer();

}  // namespace qv
