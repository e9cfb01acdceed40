// One detection tick: from a level and a frequency to what the screen shows. Too quiet clears the
// display, a level inside the hysteresis band leaves it, a level above shows the frequency and
// judges it. Called ten times a second by the screen controller. Thread: main.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "ports/RunLoop.h"
#include "tuner/Sensitivity.h"
#include "tuner/StringRecognition.h"
#include "tuner/TunedStringFeedback.h"
#include "tuner/TunerOutlets.h"

namespace endpin {

// What the listener said at one tick.
struct Reading {
  float power = 0;          // linear level, 0 to 1
  float frequency = 0;      // hertz
  bool fine = false;        // read by the fine estimator, for which 0 is no steady pitch
  std::uint64_t block = 0;  // number of the block that was read
};

// What became of it.
struct Judgement {
  Sensitivity::Gate gate = Sensitivity::Gate::Clear;
  int string = 0;      // in tune, 1 to 4; 0: none
  bool letGo = false;  // no string is shown as in tune any more
};

class DetectionTick {
 public:
  // Everything passed in outlives this. `promptToReview` is called 2 s after each tick that finds
  // no string once all four have been in tune: ten times a second for as long as that lasts.
  DetectionTick(TunerOutlets& outlets, const Sensitivity& sensitivity,
                TunedStringFeedback& feedback, RunLoop& runLoop,
                std::function<void()> promptToReview);

  Judgement run(const Reading& reading, const StringReferences& references);

  [[nodiscard]] double lastMeasuredFrequency() const { return lastMeasuredFrequency_; }

 private:
  void clearDisplay();
  int recognise(const Reading& reading, const StringReferences& references);
  bool letsGo(const Reading& reading);
  void showNothingInTune();
  void showInTune(int number, const StringReference& reference);
  void showNoString(float frequency);

  TunerOutlets& outlets_;
  const Sensitivity& sensitivity_;
  TunedStringFeedback& feedback_;
  RunLoop& runLoop_;
  std::function<void()> promptToReview_;

  double lastMeasuredFrequency_ = 0;  // hertz, of the last tick that was judged; nothing reads it
  std::uint64_t missedBlock_ = 0;     // the last one that matched no string, and how many in a row
  int missedBlocks_ = 0;
  std::string lastTunedNoteName_;  // of the last match; a new calibration does not clear them
  std::string lastTunedFrequencyText_;
};

}  // namespace endpin
