#include "app/HearingDisplay.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "audio/PitchEstimator.h"

namespace endpin {
namespace {

// Keys of our own: the first launch clears them with the rest, and does not write them.
constexpr const char* kMicrophoneKey = "microphone";
constexpr const char* kMicrophoneNameKey = "microphoneName";
constexpr const char* kFineHearingKey = "fineHearingEnabled";

// A device that goes while another takes its place is no trouble.
constexpr int kTroubleTicks = 5;

// What follows from a note on a first start: a pitch a cello may have, for a third of a second.
constexpr int kNoteTicks = 3;
constexpr float kLowestNote = 40;  // hertz
constexpr float kHighestNote = 700;

struct TroubleRow {
  HearingTrouble trouble;
  const char* title;
  const char* remedy;
};
constexpr std::array<TroubleRow, 5> kTroubles = {{
    {HearingTrouble::NoSoundService, "TroubleNoSound", "TroubleNoSoundRemedy"},
    {HearingTrouble::NotAllowed, "TroubleNotAllowed", "TroubleNotAllowedRemedy"},
    {HearingTrouble::NoMicrophone, "TroubleNoMicrophone", "TroubleNoMicrophoneRemedy"},
    {HearingTrouble::MicrophoneNotFound, "TroubleNotFound", "TroubleNotFoundRemedy"},
    {HearingTrouble::MicrophoneMuted, "TroubleMuted", "TroubleMutedRemedy"},
}};

// Steps of the level: the quiet ones share the band between the two limits evenly, each loud one is
// three times as loud as the one before.
int levelStep(double power, const Sensitivity& sensitivity) {
  constexpr double kQuiet = HearingDisplay::kQuietSteps;
  const double bottom = sensitivity.bottomLimit;
  const double top = sensitivity.topLimit;
  if (!(power >= bottom)) return 0;
  if (power <= top) {
    const double share = (power - bottom) / (top - bottom);
    return 1 + static_cast<int>(std::min(share * kQuiet, kQuiet - 1));
  }
  const double threefold = std::log(power / top) / std::log(3.0);
  constexpr double kMost = HearingDisplay::kLoudSteps - 1;
  return HearingDisplay::kQuietSteps + 1 + static_cast<int>(std::min(threefold, kMost));
}

// Whether the default estimator can answer inside every band.
bool isDeaf(const StringReferences& references) {
  for (int number = 1; number <= 4; ++number) {
    const StringReference& reference = references[static_cast<std::size_t>(number - 1)];
    const Band band = bandOf(number, reference);
    if (reference.frequency > 0 && PitchEstimator::binsBetween(band.lower, band.upper).empty()) {
      return true;
    }
  }
  return false;
}

}  // namespace

HearingDisplay::HearingDisplay(HearingOutlets& outlets, const Ports& ports, bool fineByDefault)
    : outlets_(outlets), ports_(ports), fine_(fineByDefault) {}

void HearingDisplay::begin() {
  chosenId_ = ports_.settings.stringForKey(kMicrophoneKey).value_or("");
  chosenName_ = ports_.settings.stringForKey(kMicrophoneNameKey).value_or(chosenId_);
  if (ports_.microphones && !chosenId_.empty()) ports_.microphones->use(chosenId_);
}

void HearingDisplay::appear(const StringReferences& references) {
  outlets_.microphoneLabel.setText(text("MicrophoneTitle"));
  outlets_.fineHearingLabel.setText(text("FineHearingTitle"));
  outlets_.byEarMark.setText(text("TuneByEar"));
  outlets_.byEarHint.setText(text("CannotHear"));
  restoreFineHearing();
  followCalibration(references);
  showMicrophones();
  const bool firstStart = ports_.settings.integerForKey("numberOfRuns") <= 1;
  if (std::exchange(firstAppearance_, false) && firstStart) {
    outlets_.firstNoteHint.setText(text("BowAString"));
    speak(text("BowAString"));
  }
}

// A first launch has cleared what was saved; a choice of this run goes on.
void HearingDisplay::restoreFineHearing() {
  const bool chosen = ports_.settings.stringForKey(kFineHearingKey).has_value();
  if (chosen) fine_ = ports_.settings.boolForKey(kFineHearingKey);
  showFineHearing();
}

void HearingDisplay::followCalibration(const StringReferences& references) {
  references_ = references;
  deaf_ = isDeaf(references);
  showFineHearing();
}

void HearingDisplay::showFineHearing() {
  const bool byEar = deaf_ && !fine_;
  outlets_.fineHearingSwitch.setOn(fine_);
  outlets_.fineHearingHint.setText(text(byEar ? "FineHearingByEar" : "FineHearingHint"));
  outlets_.byEarMark.setHidden(!byEar);
  outlets_.byEarHint.setHidden(!byEar);
  outlets_.fineHearingButton.setHidden(!byEar);
}

void HearingDisplay::useFineHearing(bool on) {
  fine_ = on;
  showFineHearing();
}

void HearingDisplay::setFineHearing(bool on) {
  ports_.settings.setBool(kFineHearingKey, on);
  ports_.settings.synchronize();
  useFineHearing(on);
}

void HearingDisplay::chooseMicrophone(const ChoiceList& sender) {
  const auto line = static_cast<std::size_t>(std::max(sender.chosen(), 0.0));
  const bool known = line >= 1 && line <= listed_.size();
  const Microphone chosen = known ? listed_[line - 1] : Microphone{};
  chosenId_ = chosen.id;
  chosenName_ = chosen.name;
  ports_.settings.setString(kMicrophoneKey, chosenId_);
  ports_.settings.setString(kMicrophoneNameKey, chosenName_);
  ports_.settings.synchronize();
  if (ports_.microphones) ports_.microphones->use(chosenId_);
  showMicrophones();
}

// The chosen one keeps its line while it is not connected.
void HearingDisplay::showMicrophones() {
  if (!ports_.microphones) return;
  listedChanges_ = ports_.microphones->changes();
  const std::string inUse = ports_.microphones->nameInUse();
  outlets_.microphoneName.setText(inUse.empty() ? chosenName_ : inUse);
  listed_ = ports_.microphones->connected();
  const auto isChosen = [this](const Microphone& one) { return one.id == chosenId_; };
  std::string lines = text("FollowTheSystem");
  if (chosenId_.empty() && !inUse.empty()) lines += '\t' + text("NowUsing", inUse);
  for (const Microphone& one : listed_) lines += '\n' + one.name;
  if (!chosenId_.empty() && std::none_of(listed_.begin(), listed_.end(), isChosen)) {
    listed_.push_back({chosenId_, chosenName_});
    lines += '\n' + chosenName_ + '\t' + text("NotConnected");
  }
  const auto chosen = std::find_if(listed_.begin(), listed_.end(), isChosen);
  outlets_.microphoneChoices.setChoices(std::move(lines));
  outlets_.microphoneChoices.setChosen(
      chosenId_.empty() ? 0 : static_cast<double>(chosen - listed_.begin() + 1));
}

void HearingDisplay::tick(const Reading& reading, const Sensitivity& sensitivity,
                          const Judgement& judged) {
  followTrouble();
  if (ports_.microphones && ports_.microphones->changes() != listedChanges_) showMicrophones();
  showLevel(reading.power, sensitivity);
  followFirstNote(judged, reading.frequency);
  speakOfStrings(judged, reading.block);
}

void HearingDisplay::followTrouble() {
  if (!ports_.microphones) return;
  const HearingTrouble trouble = ports_.microphones->trouble();
  troubledTicks_ = trouble == HearingTrouble::None ? 0 : troubledTicks_ + 1;
  if (trouble == shown_) return;
  if (trouble == HearingTrouble::None || troubledTicks_ >= kTroubleTicks) showTrouble(trouble);
}

void HearingDisplay::showTrouble(HearingTrouble trouble) {
  shown_ = trouble;
  const auto row =
      std::find_if(kTroubles.begin(), kTroubles.end(),
                   [trouble](const TroubleRow& each) { return each.trouble == trouble; });
  const bool troubled = row != kTroubles.end();
  outlets_.troubleTitle.setText(troubled ? text(row->title) : "");
  outlets_.troubleRemedy.setText(troubled ? text(row->remedy) : "");
  speak(troubled ? text(row->title) + ". " + text(row->remedy) : text("ListeningTitle"));
}

// Up at once, down a step a tick, so that it can be followed by the eye.
void HearingDisplay::showLevel(float power, const Sensitivity& sensitivity) {
  const double step = levelStep(static_cast<double>(power), sensitivity);
  outlets_.inputLevel.setLevel(std::max(step, outlets_.inputLevel.level() - 1));
}

void HearingDisplay::followFirstNote(const Judgement& judged, float frequency) {
  if (outlets_.firstNoteHint.text().empty()) return;
  const bool note = judged.gate == Sensitivity::Gate::Detect && frequency >= kLowestNote &&
                    frequency <= kHighestNote;
  notes_ = note ? notes_ + 1 : 0;
  if (notes_ >= kNoteTicks) outlets_.firstNoteHint.setText("");
}

// Once for each judgement: a string that wavers is not told again before it was let go. The level
// is ahead of the block: when the next note begins, the lamp may show once more what was heard
// before the silence, but that is not told again.
void HearingDisplay::speakOfStrings(const Judgement& judged, std::uint64_t block) {
  if (judged.letGo) {
    blockLetGo_ = block;
    if (std::exchange(spokenString_, 0) != 0) speak("");
  } else if (judged.string != 0 && judged.string != spokenString_ && block != blockLetGo_) {
    spokenString_ = judged.string;
    const auto place = static_cast<std::size_t>(judged.string - 1);
    speak(text("NoteInTune", references_[place].noteName));
  }
}

void HearingDisplay::speak(std::string text) {
  outlets_.announcement.setText(std::move(text));
}

std::string HearingDisplay::text(std::string_view key) const {
  return ports_.bundle.localizedString(key, "", "");
}

std::string HearingDisplay::text(std::string_view key, std::string_view filledIn) const {
  constexpr std::string_view kPlaceholder = "%@";
  std::string pattern = text(key);
  const auto place = pattern.find(kPlaceholder);
  if (place != pattern.npos) pattern.replace(place, kPlaceholder.size(), filledIn);
  return pattern;
}

}  // namespace endpin
