#include "ReaderThreads.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

#include "base/platform/Platform.h"

namespace qv {

namespace {

constexpr int kMostThreads = 64;

std::atomic<int> set_threads = 0;

// Threads that wait for work, and the work that waits for threads.
class Crew {
 public:
  // `before` is the crew that this process inherited, if any. Its threads are not in this process,
  // so that nobody may touch it.
  explicit Crew(const Crew* before) : before_(before) {}

  [[nodiscard]] bool IsOf(unsigned long process) const { return process_ == process; }

  void Run(int helpers, const std::function<void()>& work);
  void End();

 private:
  // Work that its caller does as well. It is on the caller's stack.
  struct Job {
    const std::function<void()>& work;
    int wanted;
    int running = 0;
    Job* next = nullptr;
  };

  void Start(std::size_t helpers);
  [[nodiscard]] Job* NextJob() const;
  void Remove(const Job& job);
  void Help();

  const unsigned long process_ = platform::ProcessNumber();
  [[maybe_unused]] const Crew* const before_;
  std::mutex mutex_;
  std::condition_variable wanted_;
  std::condition_variable left_;
  Job* first_ = nullptr;
  bool ends_ = false;
  std::vector<std::thread> threads_;
};

void Crew::Run(int helpers, const std::function<void()>& work) {
  Job job{work, helpers};
  {
    const std::lock_guard lock(mutex_);
    Start(static_cast<std::size_t>(helpers));
    job.next = first_;
    first_ = &job;
  }
  for (int i = 0; i < helpers; ++i) wanted_.notify_one();
  work();
  std::unique_lock lock(mutex_);
  Remove(job);
  left_.wait(lock, [&] { return job.running == 0; });
}

// Threads that cannot be started are done without.
void Crew::Start(std::size_t helpers) try {
  if (threads_.empty()) platform::KeepThisModule();
  while (threads_.size() < helpers) threads_.emplace_back([this] { Help(); });
} catch (const std::system_error&) {
} catch (const std::bad_alloc&) {
}

Crew::Job* Crew::NextJob() const {
  Job* job = first_;
  while (job != nullptr && job->wanted == 0) job = job->next;
  return job;
}

void Crew::Remove(const Job& job) {
  Job** place = &first_;
  while (*place != &job) place = &(*place)->next;
  *place = job.next;
}

void Crew::Help() {
  std::unique_lock lock(mutex_);
  while (true) {
    Job* job = nullptr;
    wanted_.wait(lock, [&] { return ends_ || (job = NextJob()) != nullptr; });
    if (ends_) return;
    --job->wanted;
    ++job->running;
    lock.unlock();
    job->work();
    lock.lock();
    // The job is gone as soon as its caller sees that nobody runs it.
    if (--job->running == 0) left_.notify_all();
  }
}

void Crew::End() {
  {
    const std::lock_guard lock(mutex_);
    ends_ = true;
  }
  wanted_.notify_all();
  for (std::thread& thread : threads_) thread.join();
  threads_.clear();
  ends_ = false;
}

// It is never destroyed, because its threads may outlive every static object.
std::atomic<Crew*> newest_crew = nullptr;

Crew* CrewOfThisProcess() {
  Crew* const crew = newest_crew.load(std::memory_order_acquire);
  return crew != nullptr && crew->IsOf(platform::ProcessNumber()) ? crew : nullptr;
}

// Returns null without memory.
Crew* MakeCrew() try {
  Crew* before = newest_crew.load(std::memory_order_acquire);
  auto made = std::make_unique<Crew>(before);
  if (newest_crew.compare_exchange_strong(before, made.get(), std::memory_order_acq_rel)) {
    return made.release();
  }
  return before;  // another thread was faster
} catch (const std::bad_alloc&) {
  return nullptr;
}

}  // namespace

int ReaderThreads() {
  static const int cores = static_cast<int>(std::max(std::thread::hardware_concurrency(), 1u));
  const int threads = set_threads.load(std::memory_order_relaxed);
  return std::min(threads != 0 ? threads : cores, kMostThreads);
}

void SetReaderThreads(int threads) { set_threads.store(threads, std::memory_order_relaxed); }

void RunOnReaderThreads(int helpers, const std::function<void()>& work) {
  Crew* crew = nullptr;
  if (helpers > 0) {
    crew = CrewOfThisProcess();
    if (crew == nullptr) crew = MakeCrew();
  }
  if (crew == nullptr) return work();
  crew->Run(helpers, work);
}

void EndReaderThreads() {
  if (Crew* const crew = CrewOfThisProcess(); crew != nullptr) crew->End();
}

}  // namespace qv
