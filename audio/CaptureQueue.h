// The input queue behind every microphone: collects captured samples into blocks, fills the queued
// buffers in order, meters the level. What the samples come from is the business of whoever calls
// deliver().
//
// Two threads meet here: the main thread owns the queue, starts, stops and asks it; the delivering
// thread calls deliver() and deviceLost(), and runs the callback.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "audio/CaptureFormat.h"
#include "ports/AudioInput.h"

namespace endpin {

class CaptureQueue : public AudioInputQueue {
 public:
  CaptureQueue(AudioInputCallback callback, void* userData)
      : callback_(callback), userData_(userData) {}

  // Whoever delivers must have ended before.
  ~CaptureQueue() override = default;
  CaptureQueue(const CaptureQueue&) = delete;
  CaptureQueue& operator=(const CaptureQueue&) = delete;

  // A buffer too small for a block is refused.
  AudioStatus allocateBuffer(std::uint32_t byteSize, AudioInputBuffer** buffer) override;
  // Null, a buffer of another queue and one that is queued already are refused.
  AudioStatus enqueueBuffer(AudioInputBuffer* buffer) override;

  AudioStatus start() override;
  // Waits for a callback that runs at this moment; its buffer still comes back. Without `immediate`
  // the block that has begun is completed and delivered first, after this returns.
  AudioStatus stop(bool immediate) override;
  AudioStatus isRunning(std::uint32_t& running) const override;

  AudioStatus enableLevelMetering(std::uint32_t enable) override;
  AudioStatus currentLevelMeter(LevelMeterState* levels, std::uint32_t byteSize) const override;

  // Takes samples at the capture rate and calls back for each block that they complete, before it
  // returns. While the queue is not started they are dropped. No samples at all still say that the
  // device delivers.
  // Thread: delivering.
  void deliver(std::span<const std::int16_t> samples);

  // The device went away: a block that has begun is dropped, the level is forgotten, and the queue
  // does not run until something is delivered again. Only ever between two deliveries, so that the
  // answer of isRunning cannot change under a callback.
  // Thread: delivering.
  void deviceLost();

  // Samples that the block being collected still lacks. Thread: delivering.
  [[nodiscard]] std::size_t missingSamples() const { return kBlockSamples - collected_; }

  // Blocks for which no buffer was queued. Thread: any.
  [[nodiscard]] std::uint64_t lostBlocks() const { return lostBlocks_; }

 private:
  struct OwnedBuffer {
    std::vector<std::int16_t> samples;
    AudioInputBuffer buffer;
  };

  // How loud it is: root mean square and peak of the last tenth of a second, of fewer samples while
  // fewer have come. One thread adds samples and another asks; neither keeps the other waiting for
  // longer than it takes to go through 702 samples.
  class Meter {
   public:
    void add(std::span<const std::int16_t> samples);
    // Until samples come again the level is 0.
    void clear();
    [[nodiscard]] LevelMeterState levels() const;

   private:
    static constexpr std::size_t kWindow = 702;  // samples

    mutable std::mutex mutex_;
    std::array<std::int16_t, kWindow> window_{};
    std::size_t next_ = 0;   // where the next sample goes
    std::size_t count_ = 0;  // samples in the window
  };

  void finishBlock();
  AudioInputBuffer* takeBuffer();

  const AudioInputCallback callback_;
  void* const userData_;

  mutable std::mutex buffersMutex_;  // guards the two below
  std::vector<std::unique_ptr<OwnedBuffer>> buffers_;
  std::vector<AudioInputBuffer*> queued_;  // the one to be filled next first

  // Held while samples are delivered, callbacks included, and for every change of the state below.
  std::mutex deliveryMutex_;
  std::array<std::int16_t, kBlockSamples> block_{};
  std::size_t collected_ = 0;
  bool stopAfterBlock_ = false;

  std::atomic<bool> started_ = false;
  std::atomic<bool> delivering_ = false;
  std::atomic<bool> metering_ = false;
  std::atomic<std::uint64_t> lostBlocks_ = 0;
  Meter meter_;
};

}  // namespace endpin
