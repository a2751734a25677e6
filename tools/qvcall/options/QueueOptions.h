// The commands that move files between this machine and a file server or a cloud store, in a queue.
// Paths there are as the user wrote them.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "tools/qvcall/system/SystemPlaces.h"

namespace qv::tool {

// Where the files are, and how to talk to it. What is only for one service is not used by the
// other.
struct QueueHost {
  Service service = Service::kFtp;
  std::string name;               // with a scheme or without
  std::uint16_t port = 0;         // 0: the usual one
  std::string login;              // empty: whoever may come without a name
  std::string password_file;      // empty: the user is asked; "-": standard input
  int retries = 3;                // how many more times a broken transfer is tried
  bool is_active = false;         // FTP: the server opens the connections for data
  bool is_text = false;           // FTP: line ends are translated
  bool has_virtual_host = false;  // cloud: the bucket is part of the host's name
  std::string region;             // cloud; empty: the component's own
};

// `Put` and `Get` have a folder that the files go to.
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
  bool recursive = false;  // they are folders
};

struct QueueCommand {
  QueueHost host;
  std::variant<QueuePut, QueueGet, QueueCopy, QueueMove, QueueRemove> work;
};

}  // namespace qv::tool
