// An audio output that takes every order and never pulls a sample. Thread: main.
#pragma once

#include <memory>

#include "ports/AudioOutput.h"
#include "ports/AudioSession.h"

namespace endpin {

class SilentOutput : public AudioOutput {
 public:
  std::unique_ptr<AudioOutputUnit> newOutputUnit() override { return std::make_unique<Unit>(); }

 private:
  class Unit : public AudioOutputUnit {
   public:
    AudioStatus setStreamFormat(const AudioStreamFormat& /*format*/) override { return 0; }
    AudioStatus setRenderCallback(AudioRenderCallback /*callback*/, void* /*userData*/) override {
      return 0;
    }
    AudioStatus initialize() override { return 0; }
    AudioStatus start() override { return 0; }
    AudioStatus stop() override { return 0; }
  };
};

// An audio session that grants everything and plays at full volume. Thread: any.
class OfflineSession : public AudioSession {
 public:
  Error setCategory(AudioSessionCategory /*category*/, std::uint32_t /*options*/) override {
    return std::nullopt;
  }
  Error setMode(AudioSessionMode /*mode*/) override { return std::nullopt; }
  Error setActive(bool /*active*/) override { return std::nullopt; }
  [[nodiscard]] float outputVolume() const override { return 1.0F; }
};

}  // namespace endpin
