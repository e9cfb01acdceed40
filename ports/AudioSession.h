// The process's one audio session: what kind of sound the application makes and takes.
// Called by the listener and the application shell. Thread: main, but for outputVolume.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace endpin {

enum class AudioSessionCategory { Playback, PlayAndRecord };
enum class AudioSessionMode { Default, Measurement };

// Play through the speaker when nothing else is plugged in.
inline constexpr std::uint32_t kAudioSessionDefaultToSpeaker = 8;

class AudioSession {
 public:
  // Nothing on success, else the localised description of what went wrong.
  using Error = std::optional<std::string>;

  virtual ~AudioSession() = default;

  // Whether there is a session to be had at all. What the others ask of one that cannot be had
  // comes to nothing; setCategory says why.
  [[nodiscard]] virtual bool available() const { return true; }

  virtual Error setCategory(AudioSessionCategory category, std::uint32_t options = 0) = 0;
  virtual Error setMode(AudioSessionMode mode) = 0;
  virtual Error setActive(bool active) = 0;

  // The volume of what the user hears, 0 to 1; 1 when it is not known, 0 when muted.
  // Thread: any. Never waits for the sound server.
  [[nodiscard]] virtual float outputVolume() const = 0;
};

}  // namespace endpin
