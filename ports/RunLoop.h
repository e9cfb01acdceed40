// The main run loop: repeating timers, delayed calls and calls handed over from other threads.
// Everything it fires runs on the main thread, one call at a time, in order of its due time.
#pragma once

#include <functional>

namespace endpin {

class RunLoop {
 public:
  // Names a timer; 0 is none. Timers are never invalidated: they run until the process ends,
  // also when nobody remembers their id.
  using TimerId = int;
  using Call = std::function<void()>;

  virtual ~RunLoop() = default;

  // Calls `fire` every `seconds`, the first time one interval from now. A timer that is late
  // skips the calls that it missed and keeps its phase.
  // Thread: main.
  virtual TimerId scheduleTimer(double seconds, Call fire) = 0;

  // Calls `call` once, `seconds` from now. It cannot be cancelled; two requests are two calls.
  // Thread: main.
  virtual void performAfterDelay(double seconds, Call call) = 0;

  // Calls `call` on the main thread as soon as it is free, after what was queued before.
  // Thread: any.
  virtual void dispatchAsync(Call call) = 0;
};

}  // namespace endpin
