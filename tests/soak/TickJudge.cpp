#include "tests/soak/TickJudge.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

#include "calibration/Presets.h"

namespace endpin::soak {
namespace {

constexpr double kInstant = 1e-6;  // seconds: rounding of due times
constexpr double kBeepRearm = 15.0;
constexpr double kNoStringRearm = 4.0;
constexpr double kPrompt = 2.0;
constexpr float kOvertone = 700.0F;

std::string hertz(double frequency) {
  return fmt::format("{:.1f}Hz", frequency);
}

// Takes what lies before `time`.
bool dropBefore(std::deque<double>& times, double time) {
  const std::size_t before = times.size();
  while (!times.empty() && times.front() < time) times.pop_front();
  return times.size() < before;
}

}  // namespace

std::string TickJudge::judge(double now, std::uint64_t beeps, std::size_t pendingCalls) {
  expectTick(now);
  for (const std::string& complaint : {judgeScreen(), judgeRing(), judgeCalibration(),
                                       judgePending(pendingCalls, beeps), judgeBeep(now, beeps)}) {
    if (!complaint.empty()) return complaint;
  }
  return {};
}

void TickJudge::expectTick(double now) {
  string_ = 0;
  dropBefore(prompts_, now - kInstant);
  const Reading& reading = controller_.lastReading();
  const StringReferences references = controller_.stringReferences();
  switch (controller_.sensitivity().judge(reading.power, reading.frequency)) {
    case Sensitivity::Gate::Clear:
      expected_ = {};
      ++clears_;
      return;
    case Sensitivity::Gate::Hold:
      ++holds_;
      return;
    case Sensitivity::Gate::Detect:
      break;
  }
  string_ = matchingString(static_cast<double>(reading.frequency), references);
  string_ != 0 ? expectMatch(references) : expectNoString(now, reading.frequency);
}

void TickJudge::expectMatch(const StringReferences& references) {
  const auto row = static_cast<std::size_t>(string_ - 1);
  expected_ = {hertz(references[row].frequency), kStrings[row].noteName, true};
  lastMatch_ = expected_;
  tuned_[row] = true;
  ++matches_;
}

// The lamp and, but for an overtone, the note stay as they are.
void TickJudge::expectNoString(double now, float frequency) {
  expected_.frequency = hertz(static_cast<double>(frequency));
  if (frequency > kOvertone) {
    expected_.frequency = lastMatch_.frequency;
    expected_.note = lastMatch_.note;
  }
  ++others_;
  if (!std::all_of(tuned_.begin(), tuned_.end(), [](bool tuned) { return tuned; })) return;
  prompts_.push_back(now + kPrompt);
  noStringRearms_.push_back(now + kNoStringRearm);
}

std::string TickJudge::judgeScreen() const {
  const bool green = screen_.LEDDisplay.image() == "green64.png";
  const char* large = green ? "green128.png" : "yellow128.png";
  const Shown shown{screen_.freq_label.text(), screen_.noteDisplay.text(), green};
  if (shown != expected_) {
    return fmt::format("the screen shows '{}' '{}' {}, expected '{}' '{}' {}", shown.frequency,
                       shown.note, green, expected_.frequency, expected_.note, expected_.green);
  }
  if (screen_.LEDDisplay128.image() != large) return "the two lamps differ";
  if (green && shown.note.empty()) return "a green lamp without a note";
  for (const ImageView* picture :
       {&screen_.tunedString, &screen_.tunedString5, &screen_.tunedStringiPad}) {
    if (picture->hidden() == green) return "lamp and string picture differ";
  }
  return {};
}

std::string TickJudge::judgeRing() const {
  for (int number = 1; number <= 4; ++number) {
    const std::string& image = screen_.rings[static_cast<std::size_t>(number - 1)].image();
    const bool shown = controller_.feedback().ringShown(number);
    if (image != (shown ? fmt::format("ring{}.png", number) : "")) return "a ring is not as kept";
    if (number == string_ && !shown) return "in tune without its ring";
  }
  return {};
}

std::string TickJudge::judgeCalibration() const {
  const Calibration& calibration = controller_.calibration();
  if (screen_.calibrationFrequencyValue.text() != fmt::format("{:02}", calibration.a4InHz())) {
    return "the label of A4 is not A4";
  }
  if (calibration.frequencies() != calibration.toleranceBases()) return "the tolerances lag behind";
  const auto highlighted = std::count_if(
      screen_.presets.begin(), screen_.presets.end(),
      [](const Button& preset) { return preset.backgroundImage() == "selectedFreqBg.png"; });
  return highlighted == 1 ? "" : fmt::format("{} presets are highlighted", highlighted);
}

std::string TickJudge::judgeBeep(double now, std::uint64_t beeps) {
  const bool eitherOrder = rearm(now);
  const bool mayBeep = string_ != 0 && controller_.feedback().soundNotificationOn;
  if (!mayBeep) return beeps == 0 ? "" : fmt::format("{} beeps for nothing", beeps);
  Beeped& beeped = beeped_[static_cast<std::size_t>(string_ - 1)];
  if (beeps > 1) return fmt::format("{} beeps in one tick", beeps);
  if (beeps == 1 && beeped == Beeped::Yes) return "a beep before it was re-armed";
  if (beeps == 0 && beeped == Beeped::No) return "a beep is missing";
  beeped = eitherOrder ? Beeped::Perhaps : Beeped::Yes;
  if (beeps == 1) beepRearms_.push_back(now + kBeepRearm);
  return {};
}

bool TickJudge::rearm(double now) {
  const bool beepDue = dropBefore(beepRearms_, now - kInstant);
  const bool noStringDue = dropBefore(noStringRearms_, now - kInstant);
  if (beepDue || noStringDue) beeped_.fill(Beeped::No);
  const bool beepNow = dropBefore(beepRearms_, now + kInstant);
  const bool noStringNow = dropBefore(noStringRearms_, now + kInstant);
  if (!beepNow && !noStringNow) return false;
  for (Beeped& beeped : beeped_) {
    if (beeped == Beeped::Yes) beeped = Beeped::Perhaps;
  }
  return true;
}

std::string TickJudge::judgePending(std::size_t pendingCalls, std::uint64_t beeps) const {
  const std::size_t known =
      beepRearms_.size() + noStringRearms_.size() + prompts_.size() + beeps;  // of this tick
  if (pendingCalls <= known) return {};
  return fmt::format("{} calls wait, {} were expected", pendingCalls, known);
}

}  // namespace endpin::soak
