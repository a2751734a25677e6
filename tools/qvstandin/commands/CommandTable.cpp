#include "Command.h"

#include <algorithm>
#include <array>

#include "CommandHandlers.h"

namespace qv::standin {

namespace {

struct Command {
  std::uint32_t code;
  void (*run)(Services&, Request&, Reply&);
  bool takes_file = false;
};

// Commands                    request fields               reply fields after the status
constexpr std::array kCommands{
    Command{3, CheckLink},             //
    Command{4, AppendLog},             // kind, text
    Command{100, UploadFile, true},    // in the name field: path; a file
    Command{101, DownloadFile},        // in the name field: path   file
    Command{130, UploadIdFile, true},  // in the name field: name, id; a file
    Command{131, DownloadIdFile},      // in the name field: name, id  file
    Command{140, CopyIdFile},          // id, name, id, name    if refused: code
    Command{150, FindIdFile},          // id, name
    Command{200, AnswerQuery},         // database, text           count, storage kind[, file]
    Command{210, AnswerPackedQuery},   // database, text           count, storage kind[, file]
    Command{300, RunStatement},        // database, text
    Command{310, RunBatch},            // database, n, n texts     if refused: code, position
    Command{700, DeleteFile},          // in the name field: path
    Command{710, SendConnectionText},  // database  in place of the status: "1" and a text, or "0"
    Command{730, DeleteIdFile},        // in the name field: name, id
    Command{900, AnswerProcedure},     // database, text           count, storage kind[, file]
    // These answer with a number in place of the status; 0 means that the command was refused.
    Command{6001, ListFolders},         // [folder]              records
    Command{6002, ListFiles},           // [folder,] pattern, "1" to reverse the order  records
    Command{6003, MakeFolder},          // path
    Command{6004, DeleteFolder},        // path
    Command{6005, Rename},              // old path, new path
    Command{6007, SendFileInfo},        // path                   record
    Command{6008, SendProgramInfo},     //                        seven texts
    Command{6009, ListSubStores},       // [pattern]              records
    Command{6011, CopyFile},            // path, path
    Command{6029, ListPage},            // as 6002; order, from, to   size[, records]
    Command{6030, CopyPackedFile},      // pack, name, id; name, id   if refused: text
    Command{6031, SendPackedChecksum},  // pack, name, id         checksum, size; or text
    Command{6032, SendIdChecksum},      // name, id               checksum, size; or text
    Command{6033, SendIdPath},          // name, id               path; or text
    // These answer with a number, "0", or "-3" and a text in place of the status; numbers are
    // decimal texts.
    Command{6015, ListGroups},       // pattern                     records, if there are any
    Command{6016, ListGroupUsers},   // group                       records, if there are any
    Command{6017, MakeDepartment},   // number
    Command{6018, MakeGroup},        // name, kind, department id
    Command{6019, AddUsersToGroup},  // group, users, number
    Command{6020, ListUsers},        //                             records, if there are any
    Command{6021, MakeUser},         // login, display name, mode
};

const Command* Find(std::uint32_t code) {
  const auto command = std::ranges::find(kCommands, code, &Command::code);
  return command != kCommands.end() ? &*command : nullptr;
}

}  // namespace

Reply Answer(Services& services, Request request) {
  Reply reply;
  const Command* const command = Find(request.command);
  if (command == nullptr) {
    AddFailure(reply, {ErrorCode::kUnknownCommand, "no such command"});
  } else {
    command->run(services, request, reply);
  }
  return reply;
}

bool TakesFile(std::uint32_t command) {
  const Command* const found = Find(command);
  return found != nullptr && found->takes_file;
}

}  // namespace qv::standin
