// What the queues of both components have in common: their pairs, and calls to a component with the
// handling of its results.
#pragma once

#include <cstddef>
#include <functional>

#include "Component.h"
#include "base/call/LastError.h"
#include "qvnetcall/ResultCodes.h"
#include "qvnetcall/RvoServer.h"
#include "qvnetcall/framework/String.h"
#include "qvnetcall/framework/StringArray.h"

namespace qv {

// The parts of one queue, which its object owns. Both arrays always have the same length.
struct PairList {
  CStringArray& first;
  CStringArray& second;
  int& done;  // 1 if the pairs were carried out, so that the next Add starts a new queue

  void Add(const CString& first_path, const CString& second_path) const;
  void Empty() const;

  using Question = std::function<bool(const CString& first_path)>;
  // Lists the pairs whose first path did not succeed, after a run in which `count` did. Returns an
  // empty text if there is nothing to report.
  [[nodiscard]] CString FailReport(const char* label, long count, const Question& succeeded) const;
};

// Returns the label of a kind of run: 0 for uploads, 1 for downloads, 2 for copies; empty for any
// other kind.
template <std::size_t kKinds>
const char* LabelOf(const char* const (&labels)[kKinds], int kind) {
  return kind >= 0 && kind < static_cast<int>(kKinds) ? labels[kind] : "";
}

inline void LogFailure(const CString& text) {
  // These queues have results of their own.
  const call::KeptError kept;
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
