#include "audio/CaptureQueue.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace endpin {
namespace {

constexpr AudioStatus kSuccess = 0;
constexpr AudioStatus kBadParameter = -50;

}  // namespace

AudioStatus CaptureQueue::allocateBuffer(std::uint32_t byteSize, AudioInputBuffer** buffer) {
  if (!buffer) return kBadParameter;
  *buffer = nullptr;
  if (byteSize < kBlockBytes) return kBadParameter;
  auto owned = std::make_unique<OwnedBuffer>();
  owned->samples.resize(byteSize / sizeof(std::int16_t));
  owned->buffer = {.mAudioData = owned->samples.data(), .mAudioDataBytesCapacity = byteSize};
  *buffer = &owned->buffer;
  const std::lock_guard lock(buffersMutex_);
  buffers_.push_back(std::move(owned));
  queued_.reserve(buffers_.size());  // no buffer is queued twice: it never grows again
  return kSuccess;
}

AudioStatus CaptureQueue::enqueueBuffer(AudioInputBuffer* buffer) {
  const std::lock_guard lock(buffersMutex_);
  const bool ours = std::any_of(buffers_.begin(), buffers_.end(),
                                [&](const auto& owned) { return &owned->buffer == buffer; });
  const bool isQueued = std::find(queued_.begin(), queued_.end(), buffer) != queued_.end();
  if (!ours || isQueued) return kBadParameter;
  queued_.push_back(buffer);
  return kSuccess;
}

AudioStatus CaptureQueue::start() {
  const std::lock_guard lock(deliveryMutex_);
  stopAfterBlock_ = false;
  started_ = true;
  return kSuccess;
}

AudioStatus CaptureQueue::stop(bool immediate) {
  const std::lock_guard lock(deliveryMutex_);
  if (!immediate && collected_ > 0) {
    stopAfterBlock_ = true;
    return kSuccess;
  }
  started_ = false;
  collected_ = 0;
  meter_.clear();
  return kSuccess;
}

AudioStatus CaptureQueue::isRunning(std::uint32_t& running) const {
  running = started_ && delivering_ ? 1 : 0;
  return kSuccess;
}

AudioStatus CaptureQueue::enableLevelMetering(std::uint32_t enable) {
  metering_ = enable != 0;
  return kSuccess;
}

AudioStatus CaptureQueue::currentLevelMeter(LevelMeterState* levels, std::uint32_t byteSize) const {
  if (!levels || byteSize < sizeof(LevelMeterState)) return kBadParameter;
  *levels = metering_ ? meter_.levels() : LevelMeterState{};
  return kSuccess;
}

void CaptureQueue::deliver(std::span<const std::int16_t> samples) {
  const std::lock_guard lock(deliveryMutex_);
  delivering_ = true;
  while (started_ && !samples.empty()) {
    const auto part = samples.first(std::min(samples.size(), missingSamples()));
    std::copy(part.begin(), part.end(), block_.begin() + static_cast<std::ptrdiff_t>(collected_));
    collected_ += part.size();
    meter_.add(part);
    if (collected_ == kBlockSamples) finishBlock();
    samples = samples.subspan(part.size());
  }
}

void CaptureQueue::finishBlock() {
  collected_ = 0;
  if (AudioInputBuffer* buffer = takeBuffer()) {
    std::copy(block_.begin(), block_.end(), buffer->mAudioData);
    buffer->mAudioDataByteSize = static_cast<std::uint32_t>(kBlockBytes);
    callback_(userData_, this, buffer);
  } else {
    ++lostBlocks_;
  }
  if (stopAfterBlock_) started_ = stopAfterBlock_ = false;
}

AudioInputBuffer* CaptureQueue::takeBuffer() {
  const std::lock_guard lock(buffersMutex_);
  if (queued_.empty()) return nullptr;
  AudioInputBuffer* buffer = queued_.front();
  queued_.erase(queued_.begin());
  return buffer;
}

void CaptureQueue::deviceLost() {
  const std::lock_guard lock(deliveryMutex_);
  delivering_ = false;
  if (stopAfterBlock_) started_ = stopAfterBlock_ = false;
  collected_ = 0;
  meter_.clear();
}

void CaptureQueue::Meter::add(std::span<const std::int16_t> samples) {
  if (samples.size() > kWindow) samples = samples.last(kWindow);
  const std::lock_guard lock(mutex_);
  for (const std::int16_t sample : samples) {
    window_[next_] = sample;
    next_ = (next_ + 1) % kWindow;
  }
  count_ = std::min(count_ + samples.size(), kWindow);
}

void CaptureQueue::Meter::clear() {
  const std::lock_guard lock(mutex_);
  next_ = 0;
  count_ = 0;
}

LevelMeterState CaptureQueue::Meter::levels() const {
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
