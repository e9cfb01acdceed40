#include "adapters/web/WebRunLoop.h"

#include <algorithm>
#include <utility>

namespace endpin {

RunLoop::TimerId WebRunLoop::scheduleTimer(double seconds, Call fire) {
  return timerQueue_.addTimer(now_, seconds, std::move(fire));
}

void WebRunLoop::performAfterDelay(double seconds, Call call) {
  timerQueue_.addCall(now_ + std::max(seconds, 0.0), std::move(call));
}

double WebRunLoop::advance(double now) {
  now_ = std::max(now_, now);
  for (;;) {
    while (callQueue_.deliver()) {
    }
    if (timerQueue_.nextDue() > now_) return timerQueue_.nextDue();
    timerQueue_.take(now_)();
  }
}

}  // namespace endpin
