// Plays sound files through the speaker of this computer, over cubeb.
#pragma once

#include <memory>
#include <string>

#include "ports/AudioPlayer.h"

namespace endpin {

class CubebPlayers : public AudioPlayers {
 public:
  // Holds the whole sound, its channels averaged, at the file's own rate. Each play opens the
  // device anew, so that a player costs nothing while it is silent and always finds the default
  // device. A sound that does not begin within half a second (there is no sound server, or it
  // hangs) is dropped.
  //
  // The destructor of a player cuts its sound off and waits a second for the sound server at most.
  // Thread: main.
  std::unique_ptr<AudioPlayer> playerWithContentsOf(const std::string& path) override;
};

}  // namespace endpin
