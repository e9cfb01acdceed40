#include "adapters/web/WebRunLoop.h"

#include <algorithm>
#include <utility>

namespace endpin {

RunLoop::TimerId WebRunLoop::scheduleTimer(double seconds, Call fire) {
  return agenda_.addTimer(now_, seconds, std::move(fire));
}

void WebRunLoop::performAfterDelay(double seconds, Call call) {
  agenda_.addCall(now_ + std::max(seconds, 0.0), std::move(call));
}

double WebRunLoop::advance(double now) {
  now_ = std::max(now_, now);
  for (;;) {
    while (mailbox_.deliver()) {
    }
    if (agenda_.nextDue() > now_) return agenda_.nextDue();
    agenda_.take(now_)();
  }
}

}  // namespace endpin
