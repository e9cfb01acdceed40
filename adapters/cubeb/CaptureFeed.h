// What the audio callback of one opened stream shares with the threads that use it. It outlives the
// stream, however long the library takes to let go of that.
#pragma once

#include <atomic>
#include <cstdint>

#include "adapters/cubeb/SampleRing.h"

namespace endpin {

struct CaptureFeed {
  // Room for a second of sound.
  explicit CaptureFeed(std::uint32_t deviceRate) : rate(deviceRate), ring(deviceRate) {}

  const std::uint32_t rate;  // hertz
  SampleRing ring;
  std::atomic<bool> failed = false;          // nothing will come any more
  std::atomic<bool> devicesChanged = false;  // a device came or went
};

}  // namespace endpin
