// What stands between the audio thread and a render callback: it can be muted, and it can be shut
// for good while the audio thread, which nobody can stop, still comes by.
#pragma once

#include <algorithm>
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

  // A muted gate fades out, gives silence then, and the callback is not asked; an open one fades
  // in. It is muted at first. Thread: any.
  void mute(bool muted) { muted_ = muted; }

  // Fades out and in again: what the callback plays is about to change. Thread: any.
  void dip() { dip_ = true; }

  // Muted, and faded out. Thread: any.
  [[nodiscard]] bool isSilent() const { return muted_ && faded_; }

  // Whether the audio thread has come by. Thread: any.
  [[nodiscard]] bool wasAsked() const { return asked_; }

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
    asked_ = true;
    const bool open = !muted_;
    const bool sounds = open || gain_ > 0;
    if (!shut_ && sounds && render(output, frames)) {
      fade(static_cast<std::int16_t*>(output), frames, open);
    } else {
      std::memset(output, 0, frames * kFrameBytes);
    }
    faded_ = gain_ == 0;
    --inside_;
    return frames;
  }

 private:
  static constexpr std::size_t kFrameBytes = sizeof(std::uint32_t);
  static constexpr float kStep = 1.0F / 309;  // a frame: 7 ms at 44100 Hz, too short to be heard

  bool render(void* output, std::uint32_t frames) noexcept {
    AudioOutputBuffer buffer{static_cast<std::uint32_t*>(output)};
    return callback_(userData_, frames, {&buffer, 1}) == 0;
  }

  // Once it is open, what the callback rendered passes as it is.
  void fade(std::int16_t* samples, std::uint32_t frames, bool open) noexcept {
    for (std::uint32_t i = 0; i < frames && (gain_ < 1 || !open || dip_); ++i) {
      const bool up = open && !dip_;
      gain_ = std::clamp(gain_ + (up ? kStep : -kStep), 0.0F, 1.0F);
      if (gain_ == 0) dip_ = false;
      for (std::uint32_t channel = 0; channel < 2; ++channel) {
        std::int16_t& sample = samples[2 * i + channel];
        sample = static_cast<std::int16_t>(gain_ * static_cast<float>(sample));
      }
    }
  }

  const AudioRenderCallback callback_;
  void* const userData_;
  // In one order for all threads, as shut() needs it.
  std::atomic<bool> muted_ = true;
  std::atomic<bool> dip_ = false;
  std::atomic<bool> faded_ = true;
  std::atomic<bool> asked_ = false;
  float gain_ = 0;  // of the audio thread
  std::atomic<bool> shut_ = false;
  std::atomic<int> inside_ = 0;  // audio threads
};

}  // namespace endpin
