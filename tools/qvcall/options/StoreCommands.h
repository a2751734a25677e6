// The commands for a server's files, directory and log, and their options. Paths on the server have
// the form that ToServerPath() returns.
#pragma once

#include <string>
#include <variant>
#include <vector>

namespace qv::tool {

struct ListFolder {
  std::string path;     // empty: the store itself
  std::string pattern;  // of files; empty: folders and all files
  bool is_long = false;
};

struct MakeFolders {
  std::vector<std::string> paths;
};

struct RemoveFolders {
  std::vector<std::string> paths;
};

struct MovePath {
  std::string source;
  std::string target;
};

struct CopyFile {
  std::string source;
  std::string target;
};

struct RemoveFiles {
  std::vector<std::string> paths;
};

struct ShowPath {
  std::string path;
};

struct PutFiles {
  std::vector<std::string> local;
  std::string server_folder;  // empty: the store itself
  bool recursive = false;
};

struct GetFiles {
  std::vector<std::string> server;  // one may be empty: the store itself
  std::string local_folder;
  bool recursive = false;
};

// A file that the server stores under a number and a name.
struct NumberedFile {
  int id = 0;  // not negative
  std::string name;
};

struct PutById {
  NumberedFile file;
  std::string local;  // a file
};

struct GetById {
  NumberedFile file;
  std::string local;  // a file, or an existing folder
};

struct ShowById {
  NumberedFile file;
};

struct ListGroups {
  std::string pattern;
};

struct ListUsers {
  std::string group;  // empty: everybody
};

struct WriteLog {
  std::string text;
  int kind = 0;  // its meaning is defined by the server
};

struct ShowServer {};

using StoreCommand = std::variant<ListFolder, MakeFolders, RemoveFolders, MovePath, CopyFile,
                                  RemoveFiles, ShowPath, PutFiles, GetFiles, PutById, GetById,
                                  ShowById, ListGroups, ListUsers, WriteLog, ShowServer>;

}  // namespace qv::tool
