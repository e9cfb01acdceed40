#include "adapters/posix/MainRunLoop.h"

#include <algorithm>
#include <utility>

namespace endpin {

RunLoop::TimerId MainRunLoop::scheduleTimer(double seconds, Call fire) {
  return timerQueue_.addTimer(now(), seconds, std::move(fire));
}

void MainRunLoop::performAfterDelay(double seconds, Call call) {
  timerQueue_.addCall(now() + std::max(seconds, 0.0), std::move(call));
}

void MainRunLoop::dispatchAsync(Call call) {
  callQueue_.post(std::move(call));
  wakeUp_.signal();
}

void MainRunLoop::run(int stopDescriptor) {
  constexpr auto kNow = Clock::time_point::min();
  while (!stopped_ && !waitReadable({stopDescriptor}, kNow)) {
    if (callQueue_.deliver()) continue;
    if (timerQueue_.nextDue() <= now()) {
      timerQueue_.take(now())();
      continue;
    }
    if (!waitReadable({wakeUp_.descriptor(), stopDescriptor}, timeOfNextCall())) continue;
    wakeUp_.take();
  }
  stopped_ = false;
}

void MainRunLoop::stop() {
  stopped_ = true;
  wakeUp_.signal();
}

double MainRunLoop::now() const {
  return std::chrono::duration<double>(Clock::now() - start_).count();
}

MainRunLoop::Clock::time_point MainRunLoop::timeOfNextCall() const {
  constexpr double kLongest = 3600;  // seconds; then it is asked again
  const double due = std::min(timerQueue_.nextDue(), now() + kLongest);
  // A nanosecond past, so that rounding does not wake the loop just too early.
  return start_ + std::chrono::ceil<Clock::duration>(std::chrono::duration<double>(due)) +
         std::chrono::nanoseconds(1);
}

}  // namespace endpin
