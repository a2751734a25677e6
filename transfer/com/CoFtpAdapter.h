// The interface of the FTP component, and its adapter for the queues.
#pragma once

#include <cstddef>

#include "ComAdapter.h"
#include "ComObject.h"
#include "qvnetcall/transfer/QvCoFtp.h"

namespace qv {

struct CoFtpTable;

struct CoFtpObject {
  const CoFtpTable* table;
};

struct CoFtpTable {
  template <class... Params>
  using Entry = ComMethod<CoFtpObject, Params...>;

  DispatchEntries<CoFtpObject> head;
  Entry<BSTR, short, BSTR, BSTR, long*> FtpLogin;
  Entry<BSTR, BSTR> AddUploadFile;
  UnusedEntry entry_9;
  Entry<long, long*> UploadFile;
  UnusedEntry entries_11_to_13[3];
  Entry<BSTR, BSTR> AddDownloadFile;
  UnusedEntry entry_15;
  Entry<long, long, long*> DownloadFile;
  UnusedEntry entry_17;
  Entry<BSTR, BSTR, long*> RenameServerFile;
  Entry<long*> FtpLogout;
  Entry<BSTR, long*> DeleteServerFile;
  Entry<BSTR, long*> DeleteServerPath;
  UnusedEntry entries_22_to_25[4];
  Entry<BSTR, long*> IsOperatorFileSuc;
  UnusedEntry entries_27_to_32[6];
  Entry<BSTR, short, BSTR, BSTR, long*> AddFtpServer;
  UnusedEntry entry_34;
  Entry<BSTR, BSTR> AddCopyServerFile;
  Entry<long, long*> CopyServerFile;
  Entry<long*> GetLastResult;
  UnusedEntry entries_38_to_40[3];
  Entry<long> SetTransModel1;
  Entry<long> SetTransModel2;
};

static_assert(offsetof(CoFtpTable, FtpLogin) == EntryOffset(7));
static_assert(offsetof(CoFtpTable, AddUploadFile) == EntryOffset(8));
static_assert(offsetof(CoFtpTable, UploadFile) == EntryOffset(10));
static_assert(offsetof(CoFtpTable, AddDownloadFile) == EntryOffset(14));
static_assert(offsetof(CoFtpTable, DownloadFile) == EntryOffset(16));
static_assert(offsetof(CoFtpTable, RenameServerFile) == EntryOffset(18));
static_assert(offsetof(CoFtpTable, FtpLogout) == EntryOffset(19));
static_assert(offsetof(CoFtpTable, DeleteServerFile) == EntryOffset(20));
static_assert(offsetof(CoFtpTable, DeleteServerPath) == EntryOffset(21));
static_assert(offsetof(CoFtpTable, IsOperatorFileSuc) == EntryOffset(26));
static_assert(offsetof(CoFtpTable, AddFtpServer) == EntryOffset(33));
static_assert(offsetof(CoFtpTable, AddCopyServerFile) == EntryOffset(35));
static_assert(offsetof(CoFtpTable, CopyServerFile) == EntryOffset(36));
static_assert(offsetof(CoFtpTable, GetLastResult) == EntryOffset(37));
static_assert(offsetof(CoFtpTable, SetTransModel1) == EntryOffset(41));
static_assert(offsetof(CoFtpTable, SetTransModel2) == EntryOffset(42));

// The FTP component as the queues use it.
class CoFtpAdapter final : public ComAdapter<IQvCoFtp, CoFtpObject, CoFtpTable> {
 public:
  // Takes over the caller's reference.
  explicit CoFtpAdapter(CoFtpObject* object) : ComAdapter(object) {}

  HRESULT FtpLogin(const char* host, short port, const char* user, const char* password,
                   long* result) override {
    return component_.Call(&CoFtpTable::FtpLogin, host, port, user, password, result);
  }
  HRESULT UploadFile(long option, long* count) override {
    return component_.Call(&CoFtpTable::UploadFile, option, count);
  }
  HRESULT DownloadFile(long one, long option, long* count) override {
    return component_.Call(&CoFtpTable::DownloadFile, one, option, count);
  }
  HRESULT AddFtpServer(const char* host, short port, const char* user, const char* password,
                       long* result) override {
    return component_.Call(&CoFtpTable::AddFtpServer, host, port, user, password, result);
  }
  HRESULT SetTransModel1(long value) override {
    return component_.Call(&CoFtpTable::SetTransModel1, value);
  }
  HRESULT SetTransModel2(long value) override {
    return component_.Call(&CoFtpTable::SetTransModel2, value);
  }
};

}  // namespace qv
