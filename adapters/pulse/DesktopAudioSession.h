// The audio session of a desktop: there is nothing to configure, every program may play and record,
// and only the output volume is worth asking for. Thread: main, but for outputVolume (any).
#pragma once

#include "adapters/pulse/OutputVolume.h"
#include "ports/AudioSession.h"

namespace endpin {

class DesktopAudioSession final : public AudioSession {
 public:
  Error setCategory(AudioSessionCategory, std::uint32_t) override { return {}; }
  Error setMode(AudioSessionMode) override { return {}; }
  Error setActive(bool) override { return {}; }
  [[nodiscard]] float outputVolume() const override { return volume_.value(); }

 private:
  OutputVolume volume_;
};

}  // namespace endpin
