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

Judgement DetectionTick::run(const Reading& reading, const StringReferences& references) {
  Judgement judged{.gate = sensitivity_.judge(reading.power, reading.frequency)};
  switch (judged.gate) {
    case Sensitivity::Gate::Clear:
      clearDisplay();
      judged.letGo = true;
      break;
    case Sensitivity::Gate::Hold:
      break;
    case Sensitivity::Gate::Detect:
      judged.string = recognise(reading, references);
      judged.letGo = judged.string == 0 && reading.fine && letsGo(reading);
      if (judged.letGo) showNothingInTune();
  }
  return judged;
}

void DetectionTick::clearDisplay() {
  missedBlocks_ = 0;
  outlets_.freq_label.setText("");
  outlets_.noteDisplay.setText("");
  showNothingInTune();
}

void DetectionTick::showNothingInTune() {
  outlets_.setTunedStringsHidden(true);
  outlets_.setLamp("yellow64.png", "yellow128.png");
}

// The fine estimator has no pitch for noise and for a change of bow: what was read before stays.
int DetectionTick::recognise(const Reading& reading, const StringReferences& references) {
  const auto frequency = static_cast<double>(reading.frequency);
  const bool pitch = !reading.fine || reading.frequency != 0;
  if (pitch) outlets_.freq_label.setText(hertzText(frequency));
  lastMeasuredFrequency_ = frequency;
  const int number = matchingString(frequency, references);
  if (number == 0) {
    showNoString(reading.frequency);
  } else {
    missedBlocks_ = 0;
    showInTune(number, references[static_cast<std::size_t>(number - 1)]);
  }
  return number;
}

// The default ear keeps the lamp until there is silence; the fine one is so sure of what it hears
// that two blocks in a row, a second, are enough to let a string go. A single one is not: a change
// of bow spoils it.
bool DetectionTick::letsGo(const Reading& reading) {
  constexpr int kBlocks = 2;
  if (std::exchange(missedBlock_, reading.block) != reading.block) ++missedBlocks_;
  return missedBlocks_ >= kBlocks;
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
