// An audio output that is pulled by hand, so that the tone of the virtual day is really made.
// Thread: main.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "ports/AudioOutput.h"

namespace endpin::soak {

class PulledOutput : public AudioOutput {
 public:
  std::unique_ptr<AudioOutputUnit> newOutputUnit() override {
    ++units_;
    return std::make_unique<Unit>(*this);
  }

  // Takes a hundredth of a second of the unit that sounds and returns its peak, 0 to 1.
  double pull() {
    if (!running_) return 0;
    std::array<std::uint32_t, 441> frames{};
    AudioOutputBuffer buffer{frames.data()};
    callback_(userData_, static_cast<std::uint32_t>(frames.size()), {&buffer, 1});
    int peak = 0;
    for (const std::uint32_t frame : frames) {
      peak = std::max(peak, std::abs(static_cast<int>(static_cast<std::int16_t>(frame & 0xFFFFU))));
    }
    return peak / 32768.0;
  }

  [[nodiscard]] bool running() const { return running_; }
  [[nodiscard]] int units() const { return units_; }

 private:
  class Unit : public AudioOutputUnit {
   public:
    explicit Unit(PulledOutput& output) : output_(output) {}
    AudioStatus setStreamFormat(const AudioStreamFormat& /*format*/) override { return 0; }
    AudioStatus setRenderCallback(AudioRenderCallback callback, void* userData) override {
      output_.callback_ = callback;
      output_.userData_ = userData;
      return 0;
    }
    AudioStatus initialize() override { return 0; }
    AudioStatus start() override {
      output_.running_ = true;
      return 0;
    }
    AudioStatus stop() override {
      output_.running_ = false;
      return 0;
    }

   private:
    PulledOutput& output_;
  };

  AudioRenderCallback callback_ = nullptr;
  void* userData_ = nullptr;
  bool running_ = false;
  int units_ = 0;
};

}  // namespace endpin::soak
