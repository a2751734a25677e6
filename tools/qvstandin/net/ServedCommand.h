// What the server remembers of a request.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace qv::standin {

struct ServedCommand {
  std::uint32_t command;
  std::string database;  // or the file that the command names; empty when it names neither
  std::string outcome;   // "done", or why not
  std::uint64_t bytes;   // of the reply: its fields, and its file
  std::chrono::milliseconds time;
};

}  // namespace qv::standin
