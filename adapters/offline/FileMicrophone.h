// A sound file as the microphone, on the virtual clock: the file begins when the queue is started
// first, and silence follows it: samples of value 0, for as long as the clock runs. At t seconds
// floor(t × 7019.5) samples are captured, and the block that they complete reaches the callback at
// that instant. Thread: main; so is the callback, because the virtual clock has no other.
#pragma once

#include <memory>

#include "adapters/offline/CapturedSound.h"
#include "adapters/offline/VirtualRunLoop.h"
#include "ports/AudioInput.h"

namespace endpin {

class FileMicrophone : public AudioInput {
 public:
  // `sound` and `runLoop` outlive the microphone and its queues. The sound plays once: of several
  // queues each hears what the others have not taken.
  FileMicrophone(CapturedSound& sound, VirtualRunLoop& runLoop)
      : sound_(sound), runLoop_(runLoop) {}

  std::unique_ptr<AudioInputQueue> newInput(const AudioStreamFormat& format,
                                            AudioInputCallback callback, void* userData) override;

 private:
  CapturedSound& sound_;
  VirtualRunLoop& runLoop_;
};

}  // namespace endpin
