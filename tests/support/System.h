// What tests ask of the operating system.
#pragma once

#include <filesystem>
#include <string>

namespace qv {

// Sets a variable of the environment, or removes it if `value` is null.
void SetVariable(const std::string& name, const char* value);

// Makes a link to a file or folder, or a pipe. Returns false where the system has no such thing.
bool MakeLink(const std::filesystem::path& target, const std::filesystem::path& link);
bool MakePipe(const std::filesystem::path& path);

}  // namespace qv
