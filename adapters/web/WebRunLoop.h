// The main run loop of a page, which tells it the time: nothing fires in between. Thread: main.
#pragma once

#include "adapters/offline/TimerQueue.h"
#include "ports/RunLoop.h"

namespace endpin {

class WebRunLoop : public RunLoop {
 public:
  // The clock reads `now` (seconds, of the page's own origin).
  explicit WebRunLoop(double now) : now_(now) {}

  TimerId scheduleTimer(double seconds, Call fire) override;
  void performAfterDelay(double seconds, Call call) override;
  void dispatchAsync(Call call) override { callQueue_.post(std::move(call)); }

  // Fires, in order, what is due at `now`: a timer once, however late it is, after a page has slept
  // too. A clock that goes backward stands still. Returns the time at which something is due next.
  double advance(double now);

 private:
  TimerQueue timerQueue_;
  CallQueue callQueue_;
  double now_;
};

}  // namespace endpin
