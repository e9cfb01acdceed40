// A sound file as a microphone would capture it: resampled to the capture rate, one chunk at a
// time. Thread: one at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "adapters/sndfile/SoundFile.h"
#include "adapters/soxr/CaptureResampler.h"

namespace endpin {

class CapturedSound {
 public:
  // Takes the file over, unread so far.
  explicit CapturedSound(SoundFile file);

  // Captures the next `samples.size()` samples, fewer at the end of the file; returns how many.
  std::size_t take(std::span<std::int16_t> samples);

  // Whether the file lasts for at least `tenths` tenths of a second; reads ahead as far as that
  // takes.
  bool lastsFor(std::uint64_t tenths);

  // Whether the sound breaks off where it was meant to go on. Known once the end was reached.
  [[nodiscard]] bool truncated() const { return file_.truncated(); }

 private:
  void readOn();

  SoundFile file_;
  std::optional<CaptureResampler> resampler_;  // none for a file at the capture rate
  std::vector<std::int16_t> chunk_;            // as read
  std::vector<std::int16_t> captured_;         // at the capture rate, taken up to taken_
  std::size_t taken_ = 0;
  bool ended_ = false;
};

}  // namespace endpin
