// The output unit that pulls the reference tone from a render callback.
// Called by the tuning fork (main thread). The callback runs on the audio render thread.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "ports/AudioInput.h"

namespace endpin {

// One interleaved output buffer. `mData` holds a frame per 32-bit word: the left sample in the low
// half, the right one in the high half.
struct AudioOutputBuffer {
  std::uint32_t* mData = nullptr;
};

// Fills every buffer with `frames` frames and returns 0.
// Thread: audio render. Realtime-safe: yes, it must not allocate, lock or wait.
using AudioRenderCallback = std::int32_t (*)(void* userData, std::uint32_t frames,
                                             std::span<AudioOutputBuffer> buffers);

class AudioOutputUnit {
 public:
  // When the destructor returns, the callback does not run and will not run again.
  virtual ~AudioOutputUnit() = default;

  virtual AudioStatus setStreamFormat(const AudioStreamFormat& format) = 0;
  virtual AudioStatus setRenderCallback(AudioRenderCallback callback, void* userData) = 0;
  virtual AudioStatus initialize() = 0;

  // Both return at once. A started unit that is started again just goes on; one whose device goes
  // away goes on when there is one again.
  // Thread: main.
  virtual AudioStatus start() = 0;
  virtual AudioStatus stop() = 0;

  // Whether a device has asked for samples since the unit was made, and it is started.
  // Thread: main.
  [[nodiscard]] virtual bool isRunning() const { return true; }
};

class AudioOutput {
 public:
  virtual ~AudioOutput() = default;

  // Null when the platform has no output.
  virtual std::unique_ptr<AudioOutputUnit> newOutputUnit() = 0;
};

}  // namespace endpin
