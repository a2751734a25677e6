#include "qvnetcall/RvoCancel.h"

#include "TransportExtensions.h"
#include "base/call/CancelFlag.h"

namespace {

thread_local CRvoCancel* thread_cancel = nullptr;

}  // namespace

CRvoCancel::CRvoCancel() : m_cancelled(0) {}

CRvoCancel::~CRvoCancel() {
  if (thread_cancel == this) SetForThread(nullptr);
}

void CRvoCancel::Cancel() { m_cancelled = 1; }

int CRvoCancel::IsCancelled() const { return m_cancelled; }

void CRvoCancel::Reset() { m_cancelled = 0; }

void CRvoCancel::SetForThread(CRvoCancel* cancel) {
  thread_cancel = cancel;
  const std::atomic<int>* const flag = cancel != nullptr ? &cancel->m_cancelled : nullptr;
  qv::call::SetCancelFlag(flag);
  qv::SetTransportsCancel(flag);
}

CRvoCancel* CRvoCancel::GetForThread() { return thread_cancel; }
