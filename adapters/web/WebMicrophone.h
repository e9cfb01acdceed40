// The microphone of a page: the browser captures, the page feeds. What the page knows of the
// devices it tells, too. Thread: main; the queue's callback runs while the page feeds.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "adapters/soxr/CaptureResampler.h"
#include "audio/CaptureQueue.h"
#include "ports/AudioInput.h"
#include "ports/Microphones.h"

namespace endpin {

class WebMicrophone : public AudioInput, public Microphones {
 public:
  // The microphone outlives its queue. One queue at a time.
  std::unique_ptr<AudioInputQueue> newInput(const AudioStreamFormat& format,
                                            AudioInputCallback callback, void* userData) override;

  // Takes samples (1 is full scale) at `rate` hertz. Another rate than before is another stream. A
  // rate that no microphone has is refused: false.
  bool feed(std::span<const float> samples, double rate);

  // No more samples come for now: a block that has begun is dropped.
  void lose();

  // What the page has found out.
  struct Facts {
    HearingTrouble trouble = HearingTrouble::None;
    std::string nameInUse;
    std::vector<Microphone> connected;
  };
  void tell(Facts facts) {
    facts_ = std::move(facts);
    ++changes_;
  }

  [[nodiscard]] HearingTrouble trouble() const override { return facts_.trouble; }
  [[nodiscard]] std::string nameInUse() const override { return facts_.nameInUse; }
  [[nodiscard]] std::vector<Microphone> connected() const override { return facts_.connected; }
  [[nodiscard]] std::uint64_t changes() const override { return changes_; }
  void use(const std::string& id) override;

 private:
  class Queue;

  Queue* queue_ = nullptr;  // owned by the listener
  Facts facts_;
  std::uint64_t changes_ = 0;
  double rate_ = 0;  // of the stream, 0 for none
  std::optional<CaptureResampler> resampler_;
  std::vector<std::int16_t> captured_;
  std::vector<std::int16_t> resampled_;
};

}  // namespace endpin
