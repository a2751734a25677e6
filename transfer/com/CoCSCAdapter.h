// The used part of the cloud storage component's interface, and its adapter for the queues.
#pragma once

#include <cstddef>

#include "ComAdapter.h"
#include "ComObject.h"
#include "qvnetcall/transfer/QvCoCSC.h"

namespace qv {

struct CoCSCTable;

struct CoCSCObject {
  const CoCSCTable* table;
};

struct CoCSCTable {
  template <class... Params>
  using Entry = ComMethod<CoCSCObject, Params...>;

  DispatchEntries<CoCSCObject> head;
  Entry<BSTR, short, BSTR, BSTR, long, long*> FtpLogin;
  Entry<long*> FtpLogout;
  Entry<BSTR, BSTR> AddUploadFile;
  UnusedEntry entries_10_to_11[2];
  Entry<long, long, long*> UploadFile;
  UnusedEntry entries_13_to_16[4];
  Entry<BSTR, BSTR> AddDownloadFile;
  UnusedEntry entry_18;
  Entry<long, long, long, long*> DownloadFile;
  UnusedEntry entry_20;
  Entry<BSTR, BSTR, long*> RenameServerFile;
  Entry<BSTR, long*> DeleteServerFile;
  Entry<BSTR, long*> DeleteServerPath;
  Entry<BSTR, long*> IsOperatorFileSuc;
  UnusedEntry entries_25_to_33[9];
  Entry<BSTR, BSTR> AddCopyServerFile;
  Entry<long, long*> CopyServerFile;
  Entry<long*> GetLastResult;
};

static_assert(offsetof(CoCSCTable, FtpLogin) == EntryOffset(7));
static_assert(offsetof(CoCSCTable, FtpLogout) == EntryOffset(8));
static_assert(offsetof(CoCSCTable, AddUploadFile) == EntryOffset(9));
static_assert(offsetof(CoCSCTable, UploadFile) == EntryOffset(12));
static_assert(offsetof(CoCSCTable, AddDownloadFile) == EntryOffset(17));
static_assert(offsetof(CoCSCTable, DownloadFile) == EntryOffset(19));
static_assert(offsetof(CoCSCTable, RenameServerFile) == EntryOffset(21));
static_assert(offsetof(CoCSCTable, DeleteServerFile) == EntryOffset(22));
static_assert(offsetof(CoCSCTable, DeleteServerPath) == EntryOffset(23));
static_assert(offsetof(CoCSCTable, IsOperatorFileSuc) == EntryOffset(24));
static_assert(offsetof(CoCSCTable, AddCopyServerFile) == EntryOffset(34));
static_assert(offsetof(CoCSCTable, CopyServerFile) == EntryOffset(35));
static_assert(offsetof(CoCSCTable, GetLastResult) == EntryOffset(36));

// The cloud storage component as the queues use it.
class CoCSCAdapter final : public ComAdapter<IQvCoCSC, CoCSCObject, CoCSCTable> {
 public:
  // Takes over the caller's reference.
  explicit CoCSCAdapter(CoCSCObject* object) : ComAdapter(object) {}

  HRESULT FtpLogin(const char* host, short port, const char* user, const char* password, long extra,
                   long* result) override {
    return component_.Call(&CoCSCTable::FtpLogin, host, port, user, password, extra, result);
  }
  HRESULT UploadFile(long option, long constant, long* count) override {
    return component_.Call(&CoCSCTable::UploadFile, option, constant, count);
  }
  HRESULT DownloadFile(long one, long option, long constant, long* count) override {
    return component_.Call(&CoCSCTable::DownloadFile, one, option, constant, count);
  }
};

}  // namespace qv
