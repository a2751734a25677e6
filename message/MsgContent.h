// The request or reply of one server call.
#pragma once

#include <cstdint>

#include "LittleEndian.h"
#include "MsgContentBase.h"
#include "qvnetcall/framework/File.h"
#include "qvnetcall/framework/String.h"

// Laid over a block that its caller owns and that outlives it. A request is built with SetCommand
// and the Add operations, a reply is read with the Get operations, in the order in which the other
// side expects or wrote the fields.
//
// Every Add and Get takes an error slot, which may be null. A slot that already holds a non-zero
// value makes the operation do nothing and return that value; otherwise the result, 0 or -1, is
// stored there. One slot through a chain of calls is tested once, at the end. Nothing throws but
// construction (std::bad_alloc); a lack of memory elsewhere is the failure -1. One thread at a
// time.
class CMsgContent : public CMsgContentBase {
 public:
  // Zero-fills the block of `buf`. With a block of less than 270 bytes the message is unbound:
  // everything fails.
  explicit CMsgContent(CAutoBuf& buf);
  ~CMsgContent() override;

  int SetCommand(unsigned int code);
  // Appends a text of at least one character. A field that does not fit the block is the last one:
  // after it, or after there was no memory for it, every append fails.
  int AddString(const char* text, int* err);
  // Appends `length` bytes, at least one; a length is taken as a signed 32-bit number.
  int AddData(const void* data, unsigned int length, int* err);

  // Reads the next field, which must be a text without a zero byte in it. Reading takes the field
  // away.
  int GetString(CString& out, int* err);
  // The same by value; empty when it fails.
  CString GetString(int* err);
  // Reads the next field into `out`; it must be exactly `length` bytes long.
  int GetData(void* out, unsigned int length, int* err);
  // Writes the bytes of the next field to `file`, which stays open. A file that cannot be written
  // is the failure -1.
  int GetFile(CFile& file, int* err);

  int SetMsgFlag(unsigned char on);
  // Names the server file of the call, cut to 255 bytes.
  int SetName(const char* name);
  // Names the server file, cut to 251 bytes, with its numeric identifier behind it. -1 for a
  // negative identifier.
  int SetIdName(const char* name, int id);
  // The path that the transport reads a request's file from, or writes a reply's file to; cut to
  // 1024 bytes.
  int SetFileName(const char* path, unsigned char file_flag);

  // For transports.
  std::uint32_t Command() const { return IsBound() ? qv::LoadU32(CommandPointer()) : 0; }
  const char* FileName() const { return file_name_; }
  unsigned char MsgFlag() const { return msg_flag_; }
  unsigned char FileFlag() const { return file_flag_; }

 private:
  friend struct MessageLayout;

  // Clears the name field and puts at most `limit` bytes of `name` there. -1 when there is no field
  // or no name.
  int WriteName(const char* name, std::size_t limit);

  char* file_name_;
  unsigned char msg_flag_ = 1;
  unsigned char file_flag_ = 1;
};
