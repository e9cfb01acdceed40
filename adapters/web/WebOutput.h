// The sound output of a page. The tone is made where it sounds, by a module of its own
// (web/Tone.cpp): nothing is rendered here, and the page is told what is to sound. Thread: main.
#pragma once

#include <memory>

#include "calibration/ToneSynthesizer.h"
#include "ports/AudioOutput.h"

namespace endpin {

class WebOutput : public AudioOutput {
 public:
  // The output outlives its units.
  std::unique_ptr<AudioOutputUnit> newOutputUnit() override;

  // Tells the page what `synthesizer` is to sound like, if it is other than what was told before.
  void follow(const ToneSynthesizer& synthesizer);

 private:
  class Unit;

  struct Tone {
    bool playing = false;
    float frequency = 0;  // hertz
    std::uint32_t waveform = 0;
    bool operator==(const Tone&) const = default;
  };

  const Unit* playing_ = nullptr;  // the unit that was started last, until it is stopped
  Tone told_;
};

}  // namespace endpin
