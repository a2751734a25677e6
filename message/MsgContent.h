// The request or reply of one server call.
#pragma once

#include <cstdint>

#include "LittleEndian.h"
#include "MsgContentBase.h"
#include "qvnetcall/framework/File.h"
#include "qvnetcall/framework/String.h"

// Uses a block that the caller owns and that must outlive it. A request is built with SetCommand
// and the Add operations, a reply is read with the Get operations, in the order in which the other
// side expects or wrote the fields.
//
// Every Add and Get takes an error slot, which may be null. If the slot already holds a non-zero
// value, the operation does nothing and returns that value; otherwise it stores its result, 0 or
// -1, there. So a chain of calls with one slot is tested once, at the end. Only construction throws
// (std::bad_alloc); a lack of memory elsewhere is the failure -1. One thread at a time.
class CMsgContent : public CMsgContentBase {
 public:
  // Zero-fills the block of `buf`. If the block has less than 270 bytes, the message is unbound and
  // every operation fails.
  explicit CMsgContent(CAutoBuf& buf);
  // The same for a block that is all zero already.
  explicit CMsgContent(const ZeroBlock& block);
  ~CMsgContent() override;

  // Stores the command's code in the block, replacing an earlier one. Returns 0, or -1 if the
  // message is unbound.
  int SetCommand(unsigned int code);
  // Appends a text of at least one character. A field that does not fit the block is the last one:
  // every later append fails, also if there was no memory for that field.
  int AddString(const char* text, int* err);
  // Appends `length` bytes, at least one. The length is taken as a signed 32-bit number.
  int AddData(const void* data, unsigned int length, int* err);

  // Reads and removes the next field, which must be a text without a zero byte.
  int GetString(CString& out, int* err);
  // The same by value; empty on failure.
  CString GetString(int* err);
  // Reads the next field, which must be exactly `length` bytes long, into `out`.
  int GetData(void* out, unsigned int length, int* err);
  // Writes the bytes of the next field to `file`, which stays open. Returns -1 also if the file
  // cannot be written.
  int GetFile(CFile& file, int* err);

  // Stores a flag for the transport, which is 1 at first; most calls of the library set it to 0 on
  // their requests. The transports that are built here do not read it. Returns 0.
  int SetMsgFlag(unsigned char on);
  // Stores the server file of the call in the block, cut to 255 bytes, in place of an earlier name.
  // Returns 0. Returns -1 and changes nothing if `name` is null or the message is unbound.
  int SetName(const char* name);
  // Stores the server file, cut to 251 bytes, and its numeric identifier in the block. Returns 0.
  // Returns -1 and changes nothing if `id` is negative, `name` is null or the message is unbound.
  int SetIdName(const char* name, int id);
  // Copies the path from which the transport reads a request's file, or to which it writes a
  // reply's file, cut to 1024 bytes. `file_flag` is stored for the transport: the library sets 1 if
  // the call is about a file, and 0 on the reply of a query, whose answer may come as a file. The
  // transports that are built here do not read it. Returns 0. Returns -1 and changes nothing if
  // `path` is null.
  int SetFileName(const char* path, unsigned char file_flag);

  // For transports. Command() is 0 before any was set, and if the message is unbound.
  std::uint32_t Command() const { return IsBound() ? qv::LoadU32(CommandPointer()) : 0; }
  // Returns the path that SetFileName stored, which this object owns; an empty text before any was
  // set, and never null.
  const char* FileName() const { return file_name_; }
  // The flags are 1 before any was set.
  unsigned char MsgFlag() const { return msg_flag_; }
  unsigned char FileFlag() const { return file_flag_; }

 private:
  friend struct MessageLayout;

  // Clears the name field and copies at most `limit` bytes of `name` into it. Returns -1 if there
  // is no field or no name.
  int WriteName(const char* name, std::size_t limit);

  char* file_name_;
  unsigned char msg_flag_ = 1;
  unsigned char file_flag_ = 1;
};
