#include "adapters/qt/QtRunLoop.h"

#include <QMetaObject>
#include <algorithm>
#include <cmath>
#include <utility>

namespace endpin {

QtRunLoop::QtRunLoop() {
  clock_.start();
  timer_.setSingleShot(true);
  timer_.setTimerType(Qt::PreciseTimer);
  QObject::connect(&timer_, &QTimer::timeout, &mainThread_, [this] { runDue(); });
}

// Begins a tenth of the interval later at most, in step with others: every appearance of the screen
// leaves a timer behind, and hundreds of them must not wake the processor one by one.
RunLoop::TimerId QtRunLoop::scheduleTimer(double seconds, Call fire) {
  const double step = std::max(seconds, 0.001) / 10;
  const double begin = std::ceil(now() / step) * step;
  const TimerId timer = timerQueue_.addTimer(begin, seconds, std::move(fire));
  waitForNext();
  return timer;
}

void QtRunLoop::performAfterDelay(double seconds, Call call) {
  timerQueue_.addCall(now() + std::max(seconds, 0.0), std::move(call));
  waitForNext();
}

void QtRunLoop::dispatchAsync(Call call) {
  QMetaObject::invokeMethod(&mainThread_, std::move(call), Qt::QueuedConnection);
}

double QtRunLoop::now() const {
  return static_cast<double>(clock_.nsecsElapsed()) * 1e-9;
}

// What becomes due while the calls run waits for the next turn of the event loop, so that input and
// drawing get theirs.
void QtRunLoop::runDue() {
  const double time = now();
  while (timerQueue_.nextDue() <= time) timerQueue_.take(time)();
  waitForNext();
}

void QtRunLoop::waitForNext() {
  const double due = timerQueue_.nextDue();
  if (due == TimerQueue::kNever) return;
  constexpr double kLongestWait = 86400;  // seconds; it is looked at again then
  const double wait = std::clamp(due - now(), 0.0, kLongestWait);
  timer_.start(static_cast<int>(std::ceil(wait * 1000)));
}

}  // namespace endpin
