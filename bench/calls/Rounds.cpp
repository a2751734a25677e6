#include "Rounds.h"

#include <algorithm>
#include <barrier>
#include <cmath>
#include <exception>
#include <numeric>
#include <random>
#include <thread>
#include <utility>

namespace qv::bench {

namespace {

using Clock = std::chrono::steady_clock;
using Microseconds = std::chrono::duration<double, std::micro>;

// What one thread measured.
struct Share {
  std::vector<double> times;
  double rate = 0;
};

Share Measure(const Work& work, std::size_t thread, std::chrono::milliseconds slice) {
  Share share;
  const Clock::time_point begin = Clock::now();
  Clock::time_point now = begin;
  do {
    const Clock::time_point before = now;
    work.call(thread);
    now = Clock::now();
    share.times.push_back(Microseconds(now - before).count());
  } while (work.length == Length::kShort && now - begin < slice);
  share.rate =
      static_cast<double>(share.times.size()) / std::chrono::duration<double>(now - begin).count();
  return share;
}

void WarmUp(const Work& work, std::size_t thread, int calls) {
  if (work.length == Length::kLong) return;
  for (int i = 0; i < calls; ++i) work.call(thread);
}

// All threads begin to be measured when all of them are warm.
std::vector<Share> MeasureOnThreads(const Work& work, const Pace& pace) {
  std::vector<Share> shares(work.threads);
  std::vector<std::exception_ptr> failures(work.threads);
  std::barrier begin(static_cast<std::ptrdiff_t>(work.threads));
  const auto run = [&](std::size_t thread) {
    try {
      WarmUp(work, thread, pace.warm_up);
    } catch (...) {
      failures[thread] = std::current_exception();
    }
    begin.arrive_and_wait();
    if (failures[thread] != nullptr) return;
    try {
      shares[thread] = Measure(work, thread, pace.slice);
    } catch (...) {
      failures[thread] = std::current_exception();
    }
  };
  {
    std::vector<std::jthread> threads;
    for (std::size_t i = 0; i < work.threads; ++i) threads.emplace_back(run, i);
  }
  for (const std::exception_ptr& failure : failures) {
    if (failure != nullptr) std::rethrow_exception(failure);
  }
  return shares;
}

}  // namespace

double Percentile(std::vector<double> values, double share) {
  const auto last = static_cast<double>(values.size() - 1);
  const auto at = values.begin() + static_cast<std::ptrdiff_t>(std::lround(last * share));
  std::ranges::nth_element(values, at);
  return *at;
}

std::size_t Rounds::Add(Work work) {
  works_.push_back(std::move(work));
  figures_.emplace_back();
  return works_.size() - 1;
}

void Rounds::Run() {
  const bool has_long =
      std::ranges::any_of(works_, [](const Work& work) { return work.length == Length::kLong; });
  std::vector<std::size_t> order(works_.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::mt19937 random;  // the same orders in every run
  for (int round = 0; round < (has_long ? pace_.long_rounds : pace_.rounds); ++round) {
    std::ranges::shuffle(order, random);
    for (const std::size_t number : order) RunOnce(number);
  }
}

void Rounds::RunOnce(std::size_t number) {
  const Work& work = works_[number];
  if (work.prepare) work.prepare();
  std::vector<double> times;
  double rate = 0;
  for (const Share& share : MeasureOnThreads(work, pace_)) {
    times.insert(times.end(), share.times.begin(), share.times.end());
    rate += share.rate;
  }
  Figures& figures = figures_[number];
  figures.medians.push_back(Median(times));
  figures.rates.push_back(rate);
  figures.times.insert(figures.times.end(), times.begin(), times.end());
}

}  // namespace qv::bench
