// What the server says about the client program.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/framework/String.h"

// A plain record, which CRvoServer::GetQvNetExeInfo fills. The server defines the meaning of every
// value but m_server and m_port. One thread at a time may use an object.
class QVNETCALL_API CQvNetExeInfo {
 public:
  CString m_text1;
  int m_number2 = 0;
  CString m_text3;
  CString m_server;  // as set by CRvoServer::SetConinfo
  int m_port = 0;    // likewise
  int m_number6 = 0;
  int m_number7 = 0;
  CString m_text8;
  CString m_text9;

  // Writes the nine members to the text file at `path`, one per line in the order above, and
  // replaces what the file contained. Returns 1, or 0 if the file cannot be opened or `path` is
  // null. Write errors are not detected.
  int SaveData(const char* path) const;
  // Reads the nine members back from the text file at `path`. Returns 1, or 0 if the file cannot be
  // opened or `path` is null. Malformed files are not detected:
  // - the last byte of a text's line is removed, so a last line without a line feed loses a
  //   character;
  // - a line of more than 298 bytes is read in pieces, each of which counts as a line and loses its
  //   last byte;
  // - a missing line has the same effect as a repetition of the line before it.
  int LoadData(const char* path);
};
