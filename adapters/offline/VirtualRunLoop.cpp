#include "adapters/offline/VirtualRunLoop.h"

#include <algorithm>
#include <utility>

namespace endpin {

RunLoop::TimerId VirtualRunLoop::scheduleTimer(double seconds, Call fire) {
  return timerQueue_.addTimer(now_, seconds, std::move(fire));
}

void VirtualRunLoop::performAfterDelay(double seconds, Call call) {
  performAt(now_ + seconds, std::move(call));
}

void VirtualRunLoop::performAt(double time, Call call) {
  timerQueue_.addCall(std::max(time, now_), std::move(call));
}

void VirtualRunLoop::runUntil(double time) {
  constexpr double kRounding = 1e-9;  // seconds
  for (;;) {
    while (callQueue_.deliver()) {
    }
    if (timerQueue_.nextDue() > time + kRounding) break;
    now_ = std::max(now_, timerQueue_.nextDue());
    timerQueue_.take(now_)();
  }
  now_ = std::max(now_, time);
}

}  // namespace endpin
