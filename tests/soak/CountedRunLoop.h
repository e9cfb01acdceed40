// The virtual run loop, with a count of the delayed calls that wait in it. Thread: main.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>

#include "adapters/offline/VirtualRunLoop.h"

namespace endpin::soak {

class CountedRunLoop : public RunLoop {
 public:
  TimerId scheduleTimer(double seconds, Call fire) override {
    ++timers_;
    return loop_.scheduleTimer(seconds, std::move(fire));
  }
  void performAfterDelay(double seconds, Call call) override {
    mostPending_ = std::max(mostPending_, ++pending_);
    loop_.performAfterDelay(seconds, [this, call = std::move(call)] {
      --pending_;
      call();
    });
  }
  void dispatchAsync(Call call) override { loop_.dispatchAsync(std::move(call)); }

  void runUntil(double time) { loop_.runUntil(time); }
  [[nodiscard]] double now() const { return loop_.now(); }

  [[nodiscard]] std::size_t timers() const { return timers_; }
  [[nodiscard]] std::size_t pending() const { return pending_; }
  [[nodiscard]] std::size_t mostPending() const { return mostPending_; }

 private:
  VirtualRunLoop loop_;
  std::size_t timers_ = 0;
  std::size_t pending_ = 0;
  std::size_t mostPending_ = 0;
};

}  // namespace endpin::soak
