// Where a server is, as users and hosts write it: "files.example", "ftpes://10.0.0.1", "[::1]:21".
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qv::text {

// Removes `scheme`, such as "https://", from the front of `server`, in whatever case it is written.
// Returns false, and leaves `server` alone, if it does not stand there.
bool TakeScheme(std::string_view& server, std::string_view scheme);

// Returns a host as an address has it: in lower case, an address of IPv6 in brackets whether or not
// `name` has them. The same host has the same text however it is spelt in upper and lower case.
// Returns nothing for any other text: one that is empty or above 255 bytes, that does not begin
// with a letter or a digit, or that holds anything that could be taken for another part of an
// address (a scheme, a user, a port, a path).
[[nodiscard]] std::optional<std::string> HostForUrl(std::string_view name);

// Returns whether `host`, as HostForUrl returned it, is a number rather than a name.
[[nodiscard]] bool IsAddress(std::string_view host);

struct HostAndPort {
  std::string_view host;                 // what stands before the port, a scheme included
  std::optional<std::string_view> port;  // what stands after the colon, which may be anything
};

// Splits "host:port". An address of IPv6, which has colons of its own, has a port only after its
// brackets.
[[nodiscard]] HostAndPort SplitPort(std::string_view server);

}  // namespace qv::text
