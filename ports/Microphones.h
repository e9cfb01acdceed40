// The microphones of the platform: which there are, which of them is used, and why nothing can be
// heard. Called by the screen at every tick. Thread: main; no call waits for anything.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace endpin {

// Why no sound arrives, as far as the platform can tell. With several reasons at a time the first
// in this order that the user must mend before the others.
enum class HearingTrouble {
  None,
  NoSoundService,      // nothing on this system records or plays
  NotAllowed,          // the user has not allowed the microphone
  NoMicrophone,        // none is connected
  MicrophoneNotFound,  // the chosen one is not there, or went away
  MicrophoneMuted,     // or its volume is 0
};

struct Microphone {
  std::string id;    // stays the same as long as the device is called the same
  std::string name;  // for people
};

class Microphones {
 public:
  virtual ~Microphones() = default;

  // As it stands now: a cure is seen within a second. While nothing is known yet there is none.
  [[nodiscard]] virtual HearingTrouble trouble() const = 0;

  // The one that is heard now, for people; empty while there is none.
  [[nodiscard]] virtual std::string nameInUse() const = 0;

  // Those that can be chosen now, in the system's order.
  [[nodiscard]] virtual std::vector<Microphone> connected() const = 0;

  // Another number as soon as the name in use or the connected ones are others. They change a few
  // times a day, and are asked for then only.
  [[nodiscard]] virtual std::uint64_t changes() const = 0;

  // Listens to the microphone of that id from now on, as soon as it is there; the empty id follows
  // the system's choice. Sound that has begun goes on when nothing changes.
  virtual void use(const std::string& id) = 0;
};

}  // namespace endpin
