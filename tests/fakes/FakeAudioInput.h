// A microphone that delivers when the test says so.
#pragma once

#include <algorithm>
#include <deque>
#include <memory>
#include <span>
#include <vector>

#include "ports/AudioInput.h"

namespace endpin::fakes {

class FakeInputQueue final : public AudioInputQueue {
 public:
  FakeInputQueue(AudioInputCallback callback, void* userData)
      : callback_(callback), userData_(userData) {}

  AudioStatus allocateBuffer(std::uint32_t byteSize, AudioInputBuffer** buffer) override {
    memory_.push_back(std::make_unique<std::int16_t[]>(byteSize / 2));
    buffers_.push_back(
        std::make_unique<AudioInputBuffer>(AudioInputBuffer{memory_.back().get(), byteSize, 0}));
    *buffer = buffers_.back().get();
    return 0;
  }
  AudioStatus enqueueBuffer(AudioInputBuffer* buffer) override {
    queued_.push_back(buffer);
    return 0;
  }
  AudioStatus start() override {
    ++starts;
    running = 1;
    return 0;
  }
  AudioStatus stop(bool) override {
    ++stops;
    running = 0;
    return 0;
  }
  AudioStatus isRunning(std::uint32_t& value) const override {
    value = running;
    return runningStatus;
  }
  AudioStatus enableLevelMetering(std::uint32_t enable) override {
    metering = enable;
    return meteringStatus;
  }
  AudioStatus currentLevelMeter(LevelMeterState* levels, std::uint32_t byteSize) const override {
    if (byteSize >= sizeof(level)) *levels = level;
    return 0;
  }

  // Fills the next queued buffer and hands it over; false when none is queued.
  bool deliver(std::span<const std::int16_t> samples) {
    if (queued_.empty()) return false;
    AudioInputBuffer* buffer = queued_.front();
    queued_.pop_front();
    std::copy(samples.begin(), samples.end(), buffer->mAudioData);
    buffer->mAudioDataByteSize = static_cast<std::uint32_t>(samples.size_bytes());
    callback_(userData_, this, buffer);
    return true;
  }

  [[nodiscard]] std::size_t queuedBuffers() const { return queued_.size(); }
  [[nodiscard]] std::size_t allocatedBuffers() const { return buffers_.size(); }

  std::uint32_t running = 0;
  AudioStatus runningStatus = 0;
  AudioStatus meteringStatus = 0;
  std::uint32_t metering = 0;
  LevelMeterState level;
  int starts = 0;
  int stops = 0;

 private:
  AudioInputCallback callback_;
  void* userData_;
  std::vector<std::unique_ptr<std::int16_t[]>> memory_;
  std::vector<std::unique_ptr<AudioInputBuffer>> buffers_;
  std::deque<AudioInputBuffer*> queued_;
};

class FakeAudioInput final : public AudioInput {
 public:
  std::unique_ptr<AudioInputQueue> newInput(const AudioStreamFormat& wanted,
                                            AudioInputCallback callback, void* userData) override {
    format = wanted;
    ++queuesMade;
    if (!works) return nullptr;
    auto made = std::make_unique<FakeInputQueue>(callback, userData);
    queue = made.get();
    return made;
  }

  bool works = true;
  int queuesMade = 0;
  AudioStreamFormat format;
  FakeInputQueue* queue = nullptr;  // the one made last; its owner is who asked for it
};

}  // namespace endpin::fakes
