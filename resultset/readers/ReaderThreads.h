// The threads that read large answers together with the thread that wants them.
#pragma once

#include <functional>

namespace qv {

// The most threads that read one answer, the calling one included: as many as the machine has
// cores, unless SetReaderThreads set another number; 0 goes back to that. More than 64 count as 64.
// Any thread may call both; a read that runs keeps the number that it started with.
[[nodiscard]] int ReaderThreads();
void SetReaderThreads(int threads);

// Calls `work`, which must not throw, on this thread and at the same time on up to `helpers`
// threads of the library, which start when they are first needed. Returns when all calls have
// returned. There are fewer helpers, or none, if the system gives no more threads or others need
// them now. Any number of threads may call, also in a child that was forked.
void RunOnReaderThreads(int helpers, const std::function<void()>& work);

// Ends the library's threads, which must not be in use. They start again when they are needed.
void EndReaderThreads();

}  // namespace qv
