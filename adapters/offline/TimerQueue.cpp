#include "adapters/offline/TimerQueue.h"

#include <algorithm>
#include <cmath>

namespace endpin {

RunLoop::TimerId TimerQueue::addTimer(double now, double interval, Call call) {
  constexpr double kShortest = 0.001;
  timers_.push_back({now, std::max(interval, kShortest), std::move(call)});
  schedule(timers_.size(), 1, asked_++);
  return static_cast<RunLoop::TimerId>(timers_.size());
}

void TimerQueue::addCall(double due, Call call) {
  items_.emplace(Key{due, asked_++}, Item{std::move(call)});
}

double TimerQueue::nextDue() const {
  return items_.empty() ? kNever : items_.begin()->first.first;
}

TimerQueue::Call TimerQueue::take(double now) {
  auto node = items_.extract(items_.begin());
  Item& item = node.mapped();
  if (item.timer == 0) return std::move(item.call);
  const Timer& timer = timers_[item.timer - 1];
  const double passed = std::floor((now - timer.start) / timer.interval);
  schedule(item.timer, std::max(item.count, passed) + 1, node.key().second);
  return timer.call;
}

void TimerQueue::schedule(std::size_t timer, double count, std::uint64_t order) {
  const Timer& row = timers_[timer - 1];
  items_.emplace(Key{row.start + count * row.interval, order}, Item{{}, timer, count});
}

}  // namespace endpin
