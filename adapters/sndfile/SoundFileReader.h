// A way of reading a sound file. Used by SoundFile alone. Thread: one at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "adapters/sndfile/SoundFile.h"

namespace endpin {

class SoundFile::Reader {
 public:
  virtual ~Reader() = default;

  // Asked first; nothing else is asked of a file that is not open.
  [[nodiscard]] virtual bool isOpen() const = 0;
  [[nodiscard]] virtual bool holdsNothing() const = 0;

  [[nodiscard]] virtual std::uint64_t rateDoubled() const = 0;
  virtual std::size_t read(std::span<std::int16_t> samples) = 0;
  [[nodiscard]] virtual bool truncated() const = 0;
};

}  // namespace endpin
