// Calls to either component, and the handling of their results.
#pragma once

#include "Component.h"
#include "qvnetcall/ResultCodes.h"
#include "qvnetcall/RvoServer.h"
#include "qvnetcall/framework/String.h"

namespace qv {

inline void LogFailure(const CString& text) {
  constexpr int kTransfers = 3;
  CRvoServer::SendSvrLogInfo(kTransfers, text);
}

// Logs the text if `result` is not 0. Returns `result`.
template <class... Args>
long LogUnlessZero(long result, const char* format, const Args&... args) {
  if (result == 0) return result;
  CString text;
  text.Format(format, args...);
  LogFailure(text);
  return result;
}

// Throws _com_error if the call itself failed; otherwise returns its result.
template <class Component>
HRESULT Checked(Component* component, HRESULT result) {
  if (result < 0) RaiseComError(result, component);
  return result;
}

// Calls the component and returns its result; without a component returns kNoComponent.
template <class Component, class... Params, class... Args>
long Ask(Component* component, HRESULT (Component::*method)(Params...), const Args&... args) {
  if (component == nullptr) return result::kNoComponent;
  long result = 0;
  Checked(component, (component->*method)(args..., &result));
  return result;
}

// Passes a pair to the component and queues it, whatever the component's result. If the call
// throws, the pair is not queued.
template <class Component, class Files>
long AddPair(Component* component, HRESULT (Component::*add)(const char*, const char*),
             Files& files, const CString& first, const CString& second) {
  if (component != nullptr) Checked(component, (component->*add)(first, second));
  const long result = Ask(component, &Component::GetLastResult);
  files.Add(first, second);
  return result;
}

enum QueueKind : int { kUpload, kDownload, kCopy };

// The constant argument of every run of downloads.
inline constexpr long kDownloadConstant = 1;

// Runs a queue by `run(component, &count)` and logs the failures, followed by `suffix(result)`. If
// `run` throws, the queue is not marked as completed and nothing is logged.
template <class Component, class Files, class Run, class Suffix>
long RunQueue(Component* component, Files& files, QueueKind kind, long& count, Run run,
              Suffix suffix) {
  count = 0;
  if (component != nullptr) {
    long succeeded = 0;
    Checked(component, run(*component, &succeeded));
    count = succeeded;
  }
  const long result = Ask(component, &Component::GetLastResult);
  if (result == 0) files.SetDone();
  CString report = files.GetFailInfo(kind, count);
  if (report.IsEmpty()) return result;
  LogFailure(report + suffix(result));
  return result;
}

inline const char* NoSuffix(long /*result*/) { return ""; }

// Returns the report of one of three queues, in the order of their kinds; empty for any other kind.
template <class Files>
CString ReportOf(Files* const (&queues)[3], int kind, long count) {
  return kind >= kUpload && kind <= kCopy ? queues[kind]->GetFailInfo(kind, count) : CString();
}

}  // namespace qv
