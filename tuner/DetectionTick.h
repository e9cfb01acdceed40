// One detection tick: from a level and a frequency to what the screen shows. Too quiet clears the
// display, a level inside the hysteresis band leaves it, a level above shows the frequency and
// judges it. Called ten times a second by the screen controller. Thread: main.
#pragma once

#include <functional>
#include <string>

#include "ports/RunLoop.h"
#include "tuner/Sensitivity.h"
#include "tuner/StringRecognition.h"
#include "tuner/TunedStringFeedback.h"
#include "tuner/TunerOutlets.h"

namespace endpin {

// What the listener said at one tick: linear level (0 to 1) and hertz.
struct Reading {
  float power = 0;
  float frequency = 0;
};

class DetectionTick {
 public:
  // Everything passed in outlives this. `promptToReview` is called 2 s after each tick that finds
  // no string once all four have been in tune: ten times a second for as long as that lasts.
  DetectionTick(TunerOutlets& outlets, const Sensitivity& sensitivity,
                TunedStringFeedback& feedback, RunLoop& runLoop,
                std::function<void()> promptToReview);

  void run(const Reading& reading, const StringReferences& references);

  [[nodiscard]] double lastMeasuredFrequency() const { return lastMeasuredFrequency_; }

 private:
  void clearDisplay();
  void recognise(float frequency, const StringReferences& references);
  void showInTune(int number, const StringReference& reference);
  void showNoString(float frequency);

  TunerOutlets& outlets_;
  const Sensitivity& sensitivity_;
  TunedStringFeedback& feedback_;
  RunLoop& runLoop_;
  std::function<void()> promptToReview_;

  double lastMeasuredFrequency_ = 0;  // hertz, of the last tick that was judged; nothing reads it
  std::string lastTunedNoteName_;     // of the last match; a new calibration does not clear them
  std::string lastTunedFrequencyText_;
};

}  // namespace endpin
