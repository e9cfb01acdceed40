#include "adapters/capture/LevelMeter.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace endpin {

void LevelMeter::add(std::span<const std::int16_t> samples) {
  if (samples.size() > kWindow) samples = samples.last(kWindow);
  const std::lock_guard lock(mutex_);
  for (const std::int16_t sample : samples) {
    window_[next_] = sample;
    next_ = (next_ + 1) % kWindow;
  }
  count_ = std::min(count_ + samples.size(), kWindow);
}

void LevelMeter::clear() {
  const std::lock_guard lock(mutex_);
  next_ = 0;
  count_ = 0;
}

LevelMeterState LevelMeter::levels() const {
  const std::lock_guard lock(mutex_);
  if (count_ == 0) return {};
  std::int64_t squares = 0;
  int peak = 0;
  for (std::size_t i = 0; i < count_; ++i) {
    const int sample = window_[i];
    squares += std::int64_t{sample} * sample;
    peak = std::max(peak, std::abs(sample));
  }
  constexpr double kFullScale = 32768.0;
  const double meanSquare = static_cast<double>(squares) / static_cast<double>(count_);
  return {.mAveragePower = static_cast<float>(std::sqrt(meanSquare) / kFullScale),
          .mPeakPower = static_cast<float>(peak / kFullScale)};
}

}  // namespace endpin
