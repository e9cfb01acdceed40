#include "app/RatingManners.h"

#include <utility>

#include "rating/RatingPrompt.h"

namespace endpin {
namespace {

constexpr int kLooksASecond = 10;  // as often as the tuner listens
constexpr double kSecondsPerDay = 86400;

}  // namespace

void RatingManners::whenPolite(Show show) {
  if (asked_ || leftAlone()) return;
  waiting_ = std::move(show);
  if (std::exchange(looking_, true)) return;
  silentLooks_ = 0;
  lookLater();
}

// A date in the future, as after a clock was set back, is not long ago either.
bool RatingManners::leftAlone() const {
  const double asked = ports_.settings.doubleForKey(UsageTracker::kReminderRequestDate);
  const double days = RatingPrompt::settings().timeBeforeReminding;
  return ports_.clock.secondsSince1970() - asked < days * kSecondsPerDay;
}

void RatingManners::look() {
  looking_ = waiting_ != nullptr;
  if (!looking_) return;
  const bool sounds = ports_.stringSounds && ports_.stringSounds();
  silentLooks_ = sounds ? 0 : silentLooks_ + 1;
  if (silentLooks_ >= kSilence * kLooksASecond && waiting_()) {
    asked_ = true;
    waiting_ = nullptr;
  }
  lookLater();
}

// The run loop may outlive the manners.
void RatingManners::lookLater() {
  ports_.runLoop.performAfterDelay(1.0 / kLooksASecond, [self = std::weak_ptr(self_)] {
    if (const auto manners = self.lock()) (*manners)->look();
  });
}

}  // namespace endpin
