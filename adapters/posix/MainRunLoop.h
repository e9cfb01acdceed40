// The main run loop of a terminal program, on the monotonic clock. The thread that calls run() is
// the main thread. Making one throws std::system_error when the system refuses.
#pragma once

#include <atomic>
#include <chrono>

#include "adapters/offline/TimerQueue.h"
#include "adapters/posix/WakeUp.h"
#include "ports/RunLoop.h"

namespace endpin {

class MainRunLoop : public RunLoop {
 public:
  TimerId scheduleTimer(double seconds, Call fire) override;
  void performAfterDelay(double seconds, Call call) override;
  void dispatchAsync(Call call) override;

  // Makes the calls as they fall due, until stop() or until `stopDescriptor` can be read; what is
  // due afterwards waits for the next run(). An exception of a call ends the run and passes on.
  void run(int stopDescriptor = -1);

  // Ends run() after the call that is being made; before run(), ends it at once.
  // Thread: any; also from a signal handler.
  void stop();

 private:
  using Clock = std::chrono::steady_clock;

  [[nodiscard]] double now() const;
  [[nodiscard]] Clock::time_point timeOfNextCall() const;

  const Clock::time_point start_ = Clock::now();
  const WakeUp wakeUp_;
  TimerQueue timerQueue_;
  CallQueue callQueue_;
  std::atomic<bool> stopped_ = false;
};

}  // namespace endpin
