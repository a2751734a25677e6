// Cancelling the call that another thread is in. Not part of the platform's interface: an extension
// of this library.
#pragma once

#include <atomic>

#include "qvnetcall/Export.h"

// A host makes one object for something that a user can cancel, sets it for the thread that makes
// the calls, and calls Cancel() from any other thread:
//
//   CRvoCancel cancel;                       // the thread of the user interface has its address
//   CRvoCancel::SetForThread(&cancel);
//   const int result = CRvoDatabase::SelectSQL(&sql, &rows, "DESIGNDB", 0);
//   CRvoCancel::SetForThread(nullptr);
//
// A cancelled call returns within a tenth of a second. A call to a server returns what it returns
// when the transport fails: -1 (qv::result::kNotDelivered) if no byte of the request was sent, else
// -2 (qv::result::kOutcomeUnknown), or what it returns for these. The server stops its work soon
// afterwards; whether a statement was carried out is unknown. In local mode the driver's statement
// is cancelled, and the call returns 1. CRvoServer::GetLastErrorClass is qv::error::kCancelled.
// Calls that were finished already keep their results. The calls of CRvoFtp and CRvoCloudStorage
// are not cancelled, nor are opening a local database and flushing a received file to the disk.
// Transports of others may not support this; then only calls that were not begun are cancelled.
class QVNETCALL_API CRvoCancel {
 public:
  CRvoCancel();
  // Any thread that the object is set for must have ended that before; for the calling thread, this
  // does it.
  ~CRvoCancel();
  CRvoCancel(const CRvoCancel&) = delete;
  CRvoCancel& operator=(const CRvoCancel&) = delete;

  // Cancels the call that is running on a thread for which this object is set, and every later one,
  // until Reset(). Calling it again does nothing. Any thread; may be called from a progress
  // callback. Never throws.
  void Cancel();
  // Returns 1 after Cancel(), else 0. Any thread.
  int IsCancelled() const;
  // Makes the object as good as new. Call it while no call uses it.
  void Reset();

  // Makes `cancel` apply to the calls of this thread from now on; null ends that. The host keeps
  // owning the object. One object may be set for several threads, to cancel all of them at once.
  static void SetForThread(CRvoCancel* cancel);
  // Returns the object that is set for this thread, or null.
  static CRvoCancel* GetForThread();

 private:
  std::atomic<int> m_cancelled;
};
