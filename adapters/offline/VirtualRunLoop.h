// A main run loop whose clock only moves when it is told to: hours pass as fast as the machine
// goes, and every run is the same. Thread: main, but for dispatchAsync (any).
#pragma once

#include "adapters/offline/TimerQueue.h"
#include "ports/RunLoop.h"

namespace endpin {

class VirtualRunLoop : public RunLoop {
 public:
  TimerId scheduleTimer(double seconds, Call fire) override;
  void performAfterDelay(double seconds, Call call) override;
  void dispatchAsync(Call call) override { callQueue_.post(std::move(call)); }

  // Calls `call` once when the clock reads `time`; a time that has passed counts as now.
  void performAt(double time, Call call);

  // Seconds since the loop was made.
  [[nodiscard]] double now() const { return now_; }

  // Fires, in order, everything that is due up to and including `time`, with the clock at each due
  // time, and leaves the clock there. A nanosecond of rounding in the sum of many steps is
  // forgiven.
  void runUntil(double time);
  void advance(double seconds) { runUntil(now_ + seconds); }

 private:
  TimerQueue timerQueue_;
  CallQueue callQueue_;
  double now_ = 0;
};

}  // namespace endpin
