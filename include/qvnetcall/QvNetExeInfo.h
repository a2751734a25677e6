// What the server says about the client program.
#pragma once

#include "qvnetcall/Export.h"
#include "qvnetcall/framework/String.h"

// A plain record; the meaning of its values but for the server's name and port is the server's. One
// thread at a time.
class QVNETCALL_API CQvNetExeInfo {
 public:
  CString m_text1;
  int m_number2 = 0;
  CString m_text3;
  CString m_server;  // as set by CRvoServer::SetConinfo
  int m_port = 0;
  int m_number6 = 0;
  int m_number7 = 0;
  CString m_text8;
  CString m_text9;

  // Writes the nine members to a text file, one per line in the order above. 1, or 0 when the file
  // cannot be opened; whether it took everything is not looked at.
  int SaveData(const char* path) const;
  // Reads them back. The last byte of a text's line is cut, so that a last line without a line feed
  // loses a character; a line of over 298 bytes is taken in pieces, each as a line and with its
  // last byte cut. A line that is missing is as the one before it. 1, or 0 when the file cannot be
  // opened.
  int LoadData(const char* path);
};
