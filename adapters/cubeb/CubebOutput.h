// The speaker of this computer, over cubeb: output units that sound on the default device and go
// on by themselves after it, or the sound server, was gone.
#pragma once

#include <memory>

#include "ports/AudioOutput.h"

namespace endpin {

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

}  // namespace endpin
