// The cellist in front of a microphone on the virtual clock, which counts what passes: samples
// captured, blocks that the listener was given, blocks that found no buffer. Thread: main.
#pragma once

#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

#include "adapters/capture/CaptureQueue.h"
#include "ports/RunLoop.h"
#include "tests/soak/Cellist.h"

namespace endpin::soak {

class PlayedMicrophone : public AudioInput {
 public:
  // `cellist` and `runLoop` outlive the microphone and its queues.
  PlayedMicrophone(Cellist& cellist, RunLoop& runLoop) : cellist_(cellist), runLoop_(runLoop) {}

  std::unique_ptr<AudioInputQueue> newInput(const AudioStreamFormat& format,
                                            AudioInputCallback callback, void* userData) override {
    if (!isCaptureFormat(format)) return nullptr;
    callback_ = callback;
    userData_ = userData;
    auto queue = std::make_unique<Queue>(*this);
    queue_ = queue.get();
    return queue;
  }

  [[nodiscard]] std::uint64_t samples() const { return samples_; }
  [[nodiscard]] std::uint64_t blocks() const { return blocks_; }
  // Of the queue, which still exists.
  [[nodiscard]] std::uint64_t lostBlocks() const { return queue_->lostBlocks(); }

 private:
  // Delivers twenty times a second from its start on, before the tick of the same instant: its
  // timer is the older one.
  class Queue : public CaptureQueue {
   public:
    explicit Queue(PlayedMicrophone& owner) : CaptureQueue(count, &owner), owner_(owner) {}

    AudioStatus start() override {
      const AudioStatus status = CaptureQueue::start();
      owner_.runLoop_.scheduleTimer(kPeriod, [this] { owner_.capture(*this); });
      deliver({});
      return status;
    }

   private:
    PlayedMicrophone& owner_;
  };

  static constexpr double kPeriod = 0.05;  // seconds

  void capture(Queue& queue) {
    ++periods_;
    const auto due = static_cast<std::uint64_t>(
        std::floor(static_cast<double>(periods_) * kPeriod * kCaptureRate));
    captured_.resize(static_cast<std::size_t>(due - samples_));
    cellist_.fill(captured_);
    samples_ = due;
    queue.deliver(captured_);
  }

  static void count(void* user, AudioInputQueue* queue, AudioInputBuffer* buffer) {
    auto* self = static_cast<PlayedMicrophone*>(user);
    ++self->blocks_;
    self->callback_(self->userData_, queue, buffer);
  }

  Cellist& cellist_;
  RunLoop& runLoop_;
  AudioInputCallback callback_ = nullptr;
  void* userData_ = nullptr;
  const Queue* queue_ = nullptr;
  std::vector<std::int16_t> captured_;
  std::uint64_t periods_ = 0;
  std::uint64_t samples_ = 0;
  std::uint64_t blocks_ = 0;
};

}  // namespace endpin::soak
