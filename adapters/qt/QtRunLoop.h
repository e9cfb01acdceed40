// The run loop over Qt's event loop of the main thread: a timer queue and one precise Qt timer for
// its head. Qt's own repeating timers lose their phase when they are late, and do not say which of
// two fires first.
//
// Made and destroyed on the main thread, after the application object. What has not run by then is
// dropped.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include "adapters/offline/TimerQueue.h"
#include "ports/RunLoop.h"

namespace endpin {

class QtRunLoop final : public RunLoop {
 public:
  QtRunLoop();
  QtRunLoop(const QtRunLoop&) = delete;
  QtRunLoop& operator=(const QtRunLoop&) = delete;

  TimerId scheduleTimer(double seconds, Call fire) override;
  void performAfterDelay(double seconds, Call call) override;
  void dispatchAsync(Call call) override;

 private:
  [[nodiscard]] double now() const;  // seconds since the loop was made
  void runDue();
  void waitForNext();

  QElapsedTimer clock_;
  TimerQueue timerQueue_;
  QTimer timer_;
  QObject mainThread_;  // what queued calls are addressed to
};

}  // namespace endpin
