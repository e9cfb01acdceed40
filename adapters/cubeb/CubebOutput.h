// The speaker of this computer, over cubeb: output units for tones, players for sound files, both
// on the default device.
#pragma once

#include <memory>
#include <string>

#include "ports/AudioOutput.h"
#include "ports/AudioPlayer.h"

namespace endpin {

// Its units go on by themselves after the device, or the sound server, was gone.
class CubebOutput : public AudioOutput {
 public:
  // A unit takes signed 16-bit stereo samples at a whole rate; its format and its callback are set
  // before it is initialised, and not after. Otherwise it says so in its status and does nothing.
  // A stopped unit costs nothing; what it rendered and nobody heard yet is thrown away.
  //
  // The destructor of a unit waits a second for the sound server at most.
  // Thread: main.
  std::unique_ptr<AudioOutputUnit> newOutputUnit() override;
};

class CubebPlayers : public AudioPlayers {
 public:
  // Holds the whole sound, its channels averaged, at the file's own rate. Each play opens the
  // device anew, so that a player costs nothing while it is silent and always finds the default
  // device. A sound that does not begin within half a second (there is no sound server, or it
  // hangs) is dropped.
  //
  // The destructor of a player cuts its sound off and waits 50 ms for the sound server at most: the
  // screen, which replaces its player at each appearance, stands still meanwhile.
  // Thread: main.
  std::unique_ptr<AudioPlayer> playerWithContentsOf(const std::string& path) override;
};

}  // namespace endpin
