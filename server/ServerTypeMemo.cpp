#include "ServerTypeMemo.h"

namespace qv {

std::optional<std::string> ServerTypeMemo::Find(std::string_view server, unsigned long port) const {
  const Entry* const entry = current_.load();
  const bool known = entry != nullptr && entry->server == server && entry->port == port;
  return known ? std::optional(entry->type) : std::nullopt;
}

void ServerTypeMemo::Remember(std::string_view server, unsigned long port, std::string_view type) {
  current_ = FindOrAdd(server, port, type);
}

ServerTypeMemo::Entry* ServerTypeMemo::FindOrAdd(std::string_view server, unsigned long port,
                                                 std::string_view type) {
  for (Entry* entry = entries_.load(); entry != nullptr; entry = entry->next) {
    if (entry->server == server && entry->port == port && entry->type == type) return entry;
  }
  auto added =
      std::make_unique<Entry>(Entry{std::string(server), port, std::string(type), entries_.load()});
  while (!entries_.compare_exchange_weak(added->next, added.get())) {
  }
  return added.release();
}

void ServerTypeMemo::Clear() {
  current_ = nullptr;
  for (Entry* entry = entries_.exchange(nullptr); entry != nullptr;) {
    const std::unique_ptr<Entry> owned(entry);
    entry = owned->next;
  }
}

}  // namespace qv
