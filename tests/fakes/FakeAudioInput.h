// A microphone that delivers when the test says so.
#pragma once

#include <algorithm>
#include <deque>
#include <memory>
#include <span>
#include <vector>

#include "ports/AudioInput.h"

namespace endpin::fakes {

struct FakeInputQueue final : AudioInputQueue {
  FakeInputQueue(AudioInputCallback call, void* data) : callback(call), userData(data) {}

  AudioStatus allocateBuffer(std::uint32_t byteSize, AudioInputBuffer** buffer) override {
    auto& memory = memories.emplace_back(byteSize / 2);
    *buffer = &buffers.emplace_back(AudioInputBuffer{memory.data(), byteSize, 0});
    return 0;
  }
  AudioStatus enqueueBuffer(AudioInputBuffer* buffer) override {
    queued.push_back(buffer);
    return 0;
  }
  AudioStatus start() override {
    running = true;
    return ++starts, 0;
  }
  AudioStatus stop(bool) override {
    running = false;
    return ++stops, 0;
  }
  AudioStatus isRunning(std::uint32_t& value) const override {
    value = running;
    return runningStatus;
  }
  AudioStatus enableLevelMetering(std::uint32_t enable) override {
    metering = enable;
    return 0;
  }
  AudioStatus currentLevelMeter(LevelMeterState* levels, std::uint32_t byteSize) const override {
    if (byteSize >= sizeof(level)) *levels = level;
    return 0;
  }

  // Fills the next queued buffer and hands it over; false when none is queued.
  bool deliver(std::span<const std::int16_t> samples) {
    if (queued.empty()) return false;
    AudioInputBuffer* buffer = queued.front();
    queued.pop_front();
    std::copy(samples.begin(), samples.end(), buffer->mAudioData);
    buffer->mAudioDataByteSize = static_cast<std::uint32_t>(samples.size_bytes());
    callback(userData, this, buffer);
    return true;
  }
  [[nodiscard]] std::size_t queuedBuffers() const { return queued.size(); }
  [[nodiscard]] std::size_t allocatedBuffers() const { return buffers.size(); }

  const AudioInputCallback callback;
  void* const userData;
  std::deque<std::vector<std::int16_t>> memories;
  std::deque<AudioInputBuffer> buffers;
  std::deque<AudioInputBuffer*> queued;
  bool running = false;
  AudioStatus runningStatus = 0;
  std::uint32_t metering = 0;
  LevelMeterState level;
  int starts = 0, stops = 0;
};

struct FakeAudioInput final : AudioInput {
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
