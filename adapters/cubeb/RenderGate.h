// What stands between the audio thread and a render callback: it can be muted, and it can be shut
// for good while the audio thread, which nobody can stop, still comes by.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstring>
#include <thread>

#include "adapters/cubeb/OutputStream.h"
#include "ports/AudioOutput.h"

namespace endpin {

class RenderGate final : public OutputSource {
 public:
  // `callback` renders stereo frames.
  RenderGate(AudioRenderCallback callback, void* userData)
      : callback_(callback), userData_(userData) {}

  // A muted gate gives silence, and the callback is not asked. It is muted at first.
  // Thread: any.
  void mute(bool muted) { muted_ = muted; }

  // When it returns, the callback does not run and will not run again. It waits no longer than the
  // callback takes.
  // Thread: any but audio.
  void shut() {
    shut_ = true;
    while (inside_ > 0) std::this_thread::yield();
  }

  std::uint32_t fill(void* output, std::uint32_t frames) noexcept override {
    // Enters first and asks then: shut() does it the other way round, so one sees the other.
    ++inside_;
    if (shut_ || muted_ || !render(output, frames)) std::memset(output, 0, frames * kFrameBytes);
    --inside_;
    return frames;
  }

 private:
  static constexpr std::size_t kFrameBytes = sizeof(std::uint32_t);

  bool render(void* output, std::uint32_t frames) noexcept {
    AudioOutputBuffer buffer{static_cast<std::uint32_t*>(output)};
    return callback_(userData_, frames, {&buffer, 1}) == 0;
  }

  const AudioRenderCallback callback_;
  void* const userData_;
  // In one order for all threads, as shut() needs it.
  std::atomic<bool> muted_ = true;
  std::atomic<bool> shut_ = false;
  std::atomic<int> inside_ = 0;  // audio threads
};

}  // namespace endpin
