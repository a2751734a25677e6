#include "CommandLineParts.h"

#include <CLI/CLI.hpp>
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "tools/qvcall/system/LocalFiles.h"
#include "tools/qvcall/system/ServerPath.h"

namespace qv::tool {
namespace {

// The library truncates longer texts for the log.
constexpr std::size_t kLongestLogText = 10238;
// Longer than any path.
constexpr std::size_t kLongestWord = 4096;
constexpr int kAnyNumber = CLI::detail::expected_max_vector_size;

constexpr const char kFiles[] = "Files and folders on the server";
constexpr const char kNumbered[] = "Files that the server stores under a number and a name";
constexpr const char kServer[] = "The server and its directory";

CLI::Validator Length(std::size_t longest) {
  return {[longest](const std::string& text) {
            if (text.empty()) return std::string("must not be empty");
            return text.size() > longest
                       ? "must not be longer than " + std::to_string(longest) + " bytes"
                       : std::string();
          },
          ""};
}

// Returns the path if it can be sent to the server, and throws a ValidationError otherwise.
std::string Taken(std::string path, bool may_be_store = false) {
  if (path.size() > kLongestServerPath) {
    throw CLI::ValidationError(path, "is longer than the " + std::to_string(kLongestServerPath) +
                                         " bytes that a path on the server may have");
  }
  if (path.empty() && !may_be_store) {
    throw CLI::ValidationError("The path of a file or folder on the server", "must not be empty");
  }
  return path;
}

std::string TakenTyped(const std::string& typed, bool may_be_store = false) {
  return Taken(ToServerPath(typed), may_be_store);
}

// Returns the target itself or, if it was written as a folder, the path of `source` in it.
std::string TakenTarget(const std::string& typed, const std::string& source) {
  if (!EndsAsFolder(typed)) return TakenTyped(typed);
  return Taken(JoinServerPath(ToServerPath(typed), LastPart(source)));
}

class StoreCommandLine {
 public:
  StoreCommandLine(CLI::App& app, std::optional<StoreCommand>& taken) : app_(app), taken_(taken) {}

  void AddFolderCommands() {
    auto [ls, list] =
        Add<ListFolder>(kFiles, "ls", "List a folder; without PATH, the whole store",
                        [](auto& given) { given.path = TakenTyped(given.path, true); });
    ls->add_option("path", list->path, "A folder, or a file")->option_text("[PATH]");
    ls->add_option("pattern", list->pattern,
                   "Only files whose names match: * is any text, ? any character")
        ->option_text("[PATTERN]");
    ls->add_flag("-l", list->is_long, "With sizes, in bytes, and times");
    AddPaths<MakeFolders>("mkdir", "Create folders");
    AddPaths<RemoveFolders>("rmdir", "Remove empty folders");
  }

  void AddFileCommands() {
    AddPaths<RemoveFiles>("rm", "Remove files");
    AddSourceAndTarget<MovePath>("mv", "Move or rename a file or a folder");
    AddSourceAndTarget<CopyFile>("cp", "Copy a file");
    auto [stat, show] =
        Add<ShowPath>(kFiles, "stat", "Show the kind, size and time of a file or folder",
                      [](auto& given) { given.path = TakenTyped(given.path); });
    stat->add_option("path", show->path)->required()->option_text("PATH");
  }

  void AddTransferCommands() {
    // The last argument is the target folder.
    auto [put, up] =
        Add<PutFiles>(kFiles, "put", "Send files to a folder of the server", [](auto& given) {
          given.server_folder = TakenTyped(given.local.back(), true);
          given.local.pop_back();
        });
    AddAll(put, up->local, "LOCAL... FOLDER", "Local files, and the target folder on the server")
        ->expected(2, kAnyNumber);
    put->add_flag("-r", up->recursive, "Send folders with all their contents");
    auto [get, down] =
        Add<GetFiles>(kFiles, "get", "Fetch files into a local folder", [](auto& given) {
          given.local_folder = given.server.back();
          given.server.pop_back();
          for (std::string& path : given.server) path = TakenTyped(path, given.recursive);
        });
    AddAll(get, down->server, "PATH... LOCALFOLDER",
           "Files on the server, and the local target folder")
        ->expected(2, kAnyNumber);
    get->add_flag("-r", down->recursive, "Fetch folders with all their contents");
  }

  void AddIdCommands() {
    auto [idput, up] = Add<PutById>(kNumbered, "idput", "Send a file", LocalIsNamed<PutById>);
    AddFile(idput, up->file);
    idput->add_option("local", up->local, "The local file; without it, NAME")
        ->option_text("[LOCAL]");
    auto [idget, down] = Add<GetById>(kNumbered, "idget", "Fetch a file", LocalIsNamed<GetById>);
    AddFile(idget, down->file);
    idget->add_option("local", down->local, "The local file or folder; without it, NAME")
        ->option_text("[LOCAL]");
    auto [idstat, show] =
        Add<ShowById>(kNumbered, "idstat", "Show what the server knows about a file");
    AddFile(idstat, show->file);
  }

  void AddServerCommands() {
    auto [groups, list] = Add<ListGroups>(kServer, "groups", "List the directory's groups");
    list->pattern = "*";
    groups->add_option("pattern", list->pattern, "Only those whose names match, with * and ?")
        ->check(Length(kLongestServerPath))
        ->option_text("[PATTERN]");
    auto [users, members] = Add<ListUsers>(kServer, "users", "List the directory's users");
    users->add_option("group", members->group, "Only those of this group")
        ->check(Length(kLongestServerPath))
        ->option_text("[GROUP]");
    auto [log, line] = Add<WriteLog>(kServer, "log", "Add a line to the server's log");
    log->add_option("text", line->text)
        ->required()
        ->check(Length(kLongestLogText))
        ->option_text("TEXT");
    log->add_option("--kind", line->kind, "A number whose meaning the server defines")
        ->option_text("N [0]");
    Add<ShowServer>(kServer, "info", "Show what the server reports about itself");
  }

 private:
  template <class Command>
  struct Added {
    CLI::App* app;
    Command* command;
  };

  static constexpr auto kAsGiven = [](auto&) {};

  // `finish` checks and completes the command after parsing.
  template <class Command, class Finish = decltype(kAsGiven)>
  Added<Command> Add(const char* group, const char* name, const char* description,
                     Finish finish = kAsGiven) {
    CLI::App* const added = app_.add_subcommand(name, description)->group(group);
    auto command = std::make_shared<Command>();
    added->callback([command, finish, &taken = taken_] {
      finish(*command);
      taken = *command;
    });
    return {added, command.get()};
  }

  static CLI::Option* AddAll(CLI::App* command, std::vector<std::string>& words, const char* text,
                             const char* help = "") {
    return command->add_option("paths", words, help)
        ->required()
        ->check(Length(kLongestWord))
        ->option_text(text);
  }

  template <class Command>
  void AddPaths(const char* name, const char* description) {
    auto [added, command] = Add<Command>(kFiles, name, description, [](auto& given) {
      for (std::string& path : given.paths) path = TakenTyped(path);
    });
    AddAll(added, command->paths, "PATH...");
  }

  template <class Command>
  void AddSourceAndTarget(const char* name, const char* description) {
    auto [added, command] = Add<Command>(kFiles, name, description, [](auto& given) {
      given.source = TakenTyped(given.source);
      given.target = TakenTarget(given.target, given.source);
    });
    added->add_option("source", command->source)->required()->option_text("FROM");
    added
        ->add_option("target", command->target,
                     "The new path, or the target folder if it ends with \\ or /")
        ->required()
        ->option_text("TO");
  }

  static void AddFile(CLI::App* command, NumberedFile& file) {
    command->add_option("id", file.id)
        ->required()
        ->check(CLI::Range(0, std::numeric_limits<int>::max()))
        ->option_text("ID");
    command->add_option("name", file.name)
        ->required()
        ->check(Length(kLongestIdName))
        ->option_text("NAME");
  }

  template <class Command>
  static void LocalIsNamed(Command& given) {
    if (!given.local.empty()) return;
    if (!IsLocalName(given.file.name)) {
      throw CLI::ValidationError("LOCAL",
                                 "is required, because NAME is not a valid name for a local file");
    }
    given.local = given.file.name;
  }

  CLI::App& app_;
  std::optional<StoreCommand>& taken_;
};

}  // namespace

void AddStoreCommands(CLI::App& app, std::optional<StoreCommand>& taken) {
  StoreCommandLine commands(app, taken);
  commands.AddFolderCommands();
  commands.AddFileCommands();
  commands.AddTransferCommands();
  commands.AddIdCommands();
  commands.AddServerCommands();
}

}  // namespace qv::tool
