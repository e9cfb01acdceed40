// How loud the microphone is: root mean square and peak of the last tenth of a second.
// One thread adds samples and another asks; neither waits for more than a copy of 702 samples.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>

#include "ports/AudioInput.h"

namespace endpin {

class LevelMeter {
 public:
  static constexpr std::size_t kWindow = 702;  // samples at 7019.5 Hz

  void add(std::span<const std::int16_t> samples);

  // Forgets what was heard: the level is 0 until samples come again.
  void clear();

  // Linear, 1 is full scale. Over fewer samples while fewer have come.
  [[nodiscard]] LevelMeterState levels() const;

 private:
  mutable std::mutex mutex_;
  std::array<std::int16_t, kWindow> window_{};
  std::size_t next_ = 0;   // where the next sample goes
  std::size_t count_ = 0;  // samples in the window
};

}  // namespace endpin
