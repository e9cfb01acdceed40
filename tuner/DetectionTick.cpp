#include "tuner/DetectionTick.h"

#include <fmt/format.h>

#include <utility>

namespace endpin {
namespace {

constexpr float kOvertoneAbove = 700.0F;  // hertz; above it the last judgement is shown again
constexpr double kPromptSeconds = 2.0;
constexpr double kRearmAfterMiss = 4.0;

std::string hertzText(double frequency) {
  return fmt::format("{:.1f}Hz", frequency);
}

}  // namespace

DetectionTick::DetectionTick(TunerOutlets& outlets, const Sensitivity& sensitivity,
                             TunedStringFeedback& feedback, RunLoop& runLoop,
                             std::function<void()> promptToReview)
    : outlets_(outlets),
      sensitivity_(sensitivity),
      feedback_(feedback),
      runLoop_(runLoop),
      promptToReview_(std::move(promptToReview)) {}

void DetectionTick::run(const Reading& reading, const StringReferences& references) {
  switch (sensitivity_.judge(reading.power, reading.frequency)) {
    case Sensitivity::Gate::Clear:
      clearDisplay();
      return;
    case Sensitivity::Gate::Hold:
      return;
    case Sensitivity::Gate::Detect:
      outlets_.freq_label.setText(hertzText(static_cast<double>(reading.frequency)));
      lastMeasuredFrequency_ = static_cast<double>(reading.frequency);
      recognise(reading.frequency, references);
  }
}

void DetectionTick::clearDisplay() {
  outlets_.freq_label.setText("");
  outlets_.noteDisplay.setText("");
  outlets_.setTunedStringsHidden(true);
  outlets_.setLamp("yellow64.png", "yellow128.png");
}

void DetectionTick::recognise(float frequency, const StringReferences& references) {
  if (const int number = matchingString(static_cast<double>(frequency), references)) {
    showInTune(number, references[static_cast<std::size_t>(number - 1)]);
  } else {
    showNoString(frequency);
  }
}

// The read-out snaps to the reference: whatever lies inside the band reads the same.
void DetectionTick::showInTune(int number, const StringReference& reference) {
  outlets_.setTunedStringsHidden(false);
  outlets_.noteDisplay.setText(reference.noteName);
  lastTunedNoteName_ = reference.noteName;
  feedback_.displayTunedString(number);
  outlets_.setLamp("green64.png", "green128.png");
  outlets_.freq_label.setText(hertzText(reference.frequency));
  lastTunedFrequencyText_ = hertzText(reference.frequency);
  feedback_.playSoundOnce(number);
}

void DetectionTick::showNoString(float frequency) {
  if (frequency > kOvertoneAbove) {
    outlets_.freq_label.setText(lastTunedFrequencyText_);
    outlets_.noteDisplay.setText(lastTunedNoteName_);
  }
  if (!feedback_.allStringsTuned()) return;
  runLoop_.performAfterDelay(kPromptSeconds, promptToReview_);
  runLoop_.performAfterDelay(kRearmAfterMiss, [this] { feedback_.resetTuningBools(); });
}

}  // namespace endpin
