#include "adapters/offline/FileMicrophone.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>

#include "audio/CaptureQueue.h"

namespace endpin {
namespace {

// Brings the samples of the file into the queue when the clock has come to them: at the end of each
// block, and in between whenever the level is asked for.
class FileFeed : public std::enable_shared_from_this<FileFeed> {
 public:
  FileFeed(CapturedSound& sound, VirtualRunLoop& runLoop, CaptureQueue& queue)
      : sound_(sound), runLoop_(runLoop), queue_(queue) {}

  void begin() {
    if (!begin_) begin_ = runLoop_.now();
    queue_.deliver({});  // this device delivers from the start
    awaitBlock();
  }

  // Captures up to what the clock says.
  void catchUp() {
    if (!begin_) return;
    captureUntil(static_cast<std::uint64_t>((runLoop_.now() - *begin_) * kCaptureRate));
  }

 private:
  // Goes on while the queue is stopped: the microphone hears, and nobody listens. The call finds
  // its block by its number: the due time, divided and multiplied back, may fall one sample short
  // of it.
  void awaitBlock() {
    const std::uint64_t blockEnd = captured_ + queue_.missingSamples();
    const double due = *begin_ + static_cast<double>(blockEnd) / kCaptureRate;
    const auto round = ++round_;
    runLoop_.performAt(due, [feed = weak_from_this(), blockEnd, round] {
      const auto self = feed.lock();
      if (!self || self->round_ != round) return;
      self->captureUntil(blockEnd);
      self->awaitBlock();
    });
  }

  void captureUntil(std::uint64_t count) {
    std::array<std::int16_t, kBlockSamples> samples{};
    while (captured_ < count) {
      const auto wanted = std::min<std::uint64_t>(count - captured_, samples.size());
      const auto part = std::span(samples).first(static_cast<std::size_t>(wanted));
      std::ranges::fill(part.subspan(sound_.take(part)), std::int16_t{0});
      captured_ += wanted;
      queue_.deliver(part);
    }
  }

  CapturedSound& sound_;
  VirtualRunLoop& runLoop_;
  CaptureQueue& queue_;
  std::optional<double> begin_;  // when the file began, by the virtual clock
  std::uint64_t captured_ = 0;   // samples
  std::uint64_t round_ = 0;      // which awaited block counts
};

class FileInputQueue : public CaptureQueue {
 public:
  FileInputQueue(CapturedSound& sound, VirtualRunLoop& runLoop, AudioInputCallback callback,
                 void* userData)
      : CaptureQueue(callback, userData),
        feed_(std::make_shared<FileFeed>(sound, runLoop, *this)) {}

  AudioStatus start() override {
    feed_->catchUp();  // what passed while the queue was stopped is lost
    const AudioStatus status = CaptureQueue::start();
    feed_->begin();
    return status;
  }

  AudioStatus stop(bool immediate) override {
    feed_->catchUp();
    return CaptureQueue::stop(immediate);
  }

  AudioStatus currentLevelMeter(LevelMeterState* levels, std::uint32_t byteSize) const override {
    feed_->catchUp();
    return CaptureQueue::currentLevelMeter(levels, byteSize);
  }

 private:
  std::shared_ptr<FileFeed> feed_;
};

}  // namespace

std::unique_ptr<AudioInputQueue> FileMicrophone::newInput(const AudioStreamFormat& format,
                                                          AudioInputCallback callback,
                                                          void* userData) {
  if (!isCaptureFormat(format)) return nullptr;
  return std::make_unique<FileInputQueue>(sound_, runLoop_, callback, userData);
}

}  // namespace endpin
