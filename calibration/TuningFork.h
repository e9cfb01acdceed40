// The tuning fork: plays the reference tone of a string until it is stopped.
// Owned by the screen controller. Thread: main.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "calibration/CalibrationOutlets.h"
#include "calibration/ToneSynthesizer.h"
#include "ports/AudioOutput.h"

namespace endpin {

class TuningFork {
 public:
  enum PlayState : std::int64_t { Playing = 0, Stopped = 1 };

  TuningFork(CalibrationOutlets& outlets, AudioOutput& output)
      : outlets_(outlets), output_(output) {}

  // Makes and initialises a new output unit, not started yet. Units made before stay as they are
  // until the process ends. A platform without output leaves the tuning fork silent.
  void setupAudio();

  // Shows and sounds string `number`, 1 to 4, at `frequency` hertz. A tone that sounds already
  // changes its pitch without starting anew. With `audible` off only the labels and the frequency
  // change.
  void play(int number, double frequency, bool audible);

  void stopFreqPlay();

  // Whether a tone plays on a device that is there.
  [[nodiscard]] bool isSounding() const {
    return curPlayState == Playing && !toneUnits_.empty() && toneUnits_.back()->isRunning();
  }

  ToneSynthesizer& synthesizer() { return synthesizer_; }

  // Playing or Stopped; the way to stop is open while it plays.
  void setPlayState(PlayState state);

  std::int64_t curPlayState = Stopped;

 private:
  CalibrationOutlets& outlets_;
  AudioOutput& output_;
  ToneSynthesizer synthesizer_;
  std::vector<std::unique_ptr<AudioOutputUnit>> toneUnits_;  // the last one is the one that plays
};

}  // namespace endpin
