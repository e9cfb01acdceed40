// What a run loop has to do, and when: repeating timers and delayed calls in order of their due
// times. Both run loops of ours keep one; each has its own idea of what time it is.
//
// Times are seconds since the loop was made. Thread: main.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "ports/RunLoop.h"

namespace endpin {

class TimerQueue {
 public:
  using Call = RunLoop::Call;
  static constexpr double kNever = std::numeric_limits<double>::infinity();

  // Due at now + n × interval for n = 1, 2, …: computed, not added up. An interval of 0 or less
  // counts as a millisecond.
  RunLoop::TimerId addTimer(double now, double interval, Call call);

  // Due once.
  void addCall(double due, Call call);

  // When something is due next.
  [[nodiscard]] double nextDue() const;

  // Takes the earliest item, which is due, and returns what to call. Of items due at the same time
  // the one asked for first comes first. A timer comes again at its next time after `now`.
  Call take(double now);

 private:
  struct Timer {
    double start = 0;
    double interval = 0;
    Call call;
  };
  struct Item {
    Call call;              // of a delayed call
    std::size_t timer = 0;  // 1-based index into timers_, or 0
    double count = 0;       // which firing of the timer this is
  };
  using Key = std::pair<double, std::uint64_t>;  // due time, order of asking

  void schedule(std::size_t timer, double count, std::uint64_t order);

  std::vector<Timer> timers_;
  std::map<Key, Item> items_;
  std::uint64_t asked_ = 0;
};

// Calls handed over to the main thread, in the order in which they came. Thread: any.
class CallQueue {
 public:
  void post(RunLoop::Call call) {
    const std::lock_guard lock(mutex_);
    calls_.push_back(std::move(call));
  }

  // Makes the calls that are there now and returns whether there were any. Calls posted meanwhile
  // wait for the next time. Thread: main.
  bool deliver() {
    std::vector<RunLoop::Call> calls;
    {
      const std::lock_guard lock(mutex_);
      calls.swap(calls_);
    }
    for (const RunLoop::Call& call : calls) call();
    return !calls.empty();
  }

 private:
  std::mutex mutex_;
  std::vector<RunLoop::Call> calls_;
};

}  // namespace endpin
