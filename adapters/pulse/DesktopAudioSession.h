// The audio session of a desktop: there is nothing to configure, every program may play and record,
// and only the output volume is worth asking for. Thread: main, but for outputVolume (any).
#pragma once

#include "adapters/pulse/SoundServer.h"
#include "ports/AudioSession.h"

namespace endpin {

class DesktopAudioSession final : public AudioSession {
 public:
  // `server` outlives the session.
  explicit DesktopAudioSession(const SoundServer& server) : server_(server) {}

  Error setCategory(AudioSessionCategory, std::uint32_t) override { return {}; }
  Error setMode(AudioSessionMode) override { return {}; }
  Error setActive(bool) override { return {}; }
  [[nodiscard]] float outputVolume() const override { return server_.outputVolume(); }

 private:
  const SoundServer& server_;
};

}  // namespace endpin
