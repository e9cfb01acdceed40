#include "adapters/offline/CapturedSound.h"

#include <algorithm>
#include <utility>

#include "audio/CaptureFormat.h"

namespace endpin {
namespace {

// A twentieth of a second at a time, whatever the rate.
std::size_t chunkSize(double rate) {
  return std::clamp<std::size_t>(static_cast<std::size_t>(rate / 20), 1, 65536);
}

}  // namespace

CapturedSound::CapturedSound(SoundFile file)
    : file_(std::move(file)), chunk_(chunkSize(file_.rate())) {
  if (file_.rateDoubled() != kCaptureRateDoubled) resampler_.emplace(file_.rate());
}

std::size_t CapturedSound::take(std::span<std::int16_t> samples) {
  while (captured_.size() - taken_ < samples.size() && !ended_) readOn();
  const std::size_t count = std::min(samples.size(), captured_.size() - taken_);
  std::copy_n(captured_.begin() + static_cast<std::ptrdiff_t>(taken_), count, samples.begin());
  taken_ += count;
  return count;
}

bool CapturedSound::lastsFor(std::uint64_t tenths) {
  const auto reached = [&] { return tenths * file_.rateDoubled() <= 20 * file_.samplesRead(); };
  while (!reached() && !ended_) readOn();
  return reached();
}

void CapturedSound::readOn() {
  captured_.erase(captured_.begin(), captured_.begin() + static_cast<std::ptrdiff_t>(taken_));
  taken_ = 0;
  const std::size_t count = file_.read(chunk_);
  ended_ = count == 0;
  const auto read = std::span<const std::int16_t>(chunk_).first(count);
  if (!resampler_) {
    captured_.insert(captured_.end(), read.begin(), read.end());
  } else if (ended_) {
    resampler_->flush(captured_);
  } else {
    resampler_->process(read, captured_);
  }
}

}  // namespace endpin
