// An audio session that grants everything and plays at full volume. Thread: any.
#pragma once

#include "ports/AudioSession.h"

namespace endpin {

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
