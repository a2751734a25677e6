// The commands that transfer files between this machine and a file server or a cloud store in a
// queue. Paths on the server are as the user wrote them.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "tools/qvcall/system/SystemPlaces.h"

namespace qv::tool {

// The server or store, and how to connect to it. Options of one service are ignored by the other.
struct QueueHost {
  Service service = Service::kFtp;
  std::string name;               // with a scheme or without
  std::uint16_t port = 0;         // 0: the default
  std::string login;              // empty: anonymous
  std::string password_file;      // empty: ask the user; "-": standard input
  int retries = 3;                // how often a broken transfer is retried
  bool is_active = false;         // FTP: the server opens the data connections
  bool is_text = false;           // FTP: line ends are translated
  bool has_virtual_host = false;  // cloud: the bucket is part of the host's name
  std::string region;             // cloud; empty: the component's default
};

// Put and get transfer all files into one folder.
struct QueuePut {
  std::vector<std::string> local;
  std::string folder;
  bool recursive = false;
};

struct QueueGet {
  std::vector<std::string> paths;
  std::string local_folder;
};

struct QueueCopy {
  std::string source;
  std::string target;
};

struct QueueMove {
  std::string source;
  std::string target;
};

struct QueueRemove {
  std::vector<std::string> paths;
  bool recursive = false;  // the paths are folders
};

struct QueueCommand {
  QueueHost host;
  std::variant<QueuePut, QueueGet, QueueCopy, QueueMove, QueueRemove> work;
};

}  // namespace qv::tool
