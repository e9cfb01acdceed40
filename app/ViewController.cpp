#include "app/ViewController.h"

#include <fmt/format.h>

#include <cstddef>
#include <string>

#include "app/Localisation.h"
#include "app/SettingsRestore.h"
#include "audio/LumoListener.h"
#include "calibration/StringFrequencies.h"
#include "rating/RatingPrompt.h"

namespace endpin {
namespace {

constexpr double kTickSeconds = 0.1;
constexpr double kVolumeCheckSeconds = 0.5;

}  // namespace

ViewController::ViewController(Platform& platform, bool demoModeEnabled, bool fineHearingByDefault)
    : platform_(platform),
      demoModeEnabled_(demoModeEnabled),
      feedback_(*this, {platform.audioPlayers, platform.runLoop, platform.settings, platform.device,
                        platform.bundle, platform.log}),
      calibration_(*this, {platform.settings, platform.device, platform.bundle, platform.log}),
      tuningFork_(*this, platform.audioOutput),
      hearing_(*this, {platform.settings, platform.bundle, platform.microphones},
               fineHearingByDefault),
      tick_(*this, sensitivity_, feedback_, platform.runLoop, [this] { promptToReview(); }) {}

void ViewController::viewDidLoad() {
  platform_.device.setIdleTimerDisabled(true);
  configureAudioSession();
  if (demoModeEnabled_) {
    demoMode();
    displayAboutText();
    platform_.log.line("Demo mode ON. No sound detection available.");
    return;
  }
  hearing_.begin();
  LumoListener::sharedListener()->listen();
  timer = platform_.runLoop.scheduleTimer(kTickSeconds, [this] { tickFree(); });
  displayAboutText();
  platform_.log.line("Demo mode OFF, Sound detection started...");
}

void ViewController::configureAudioSession() {
  AudioSession& session = platform_.audioSession;
  const auto error =
      session.setCategory(AudioSessionCategory::PlayAndRecord, kAudioSessionDefaultToSpeaker);
  session.setMode(AudioSessionMode::Measurement);
  if (session.available()) {
    session.setActive(true);
  } else {
    platform_.log.line("Error creating session: " + error.value_or(""));
  }
}

void ViewController::viewWillAppear(bool /*animated*/) {
  tuningFork_.synthesizer().curTone = ToneSynthesizer::Square;
  timer = platform_.runLoop.scheduleTimer(kVolumeCheckSeconds, [this] { checkVolume(); });
  if (!demoModeEnabled_) setupAudio();
  tuningFork_.setPlayState(TuningFork::Stopped);
  prepareBeepSound();
  loadSettings(platform_.settings, platform_.log,
               {*this, *this, sensitivity_, feedback_, calibration_});
  calibration_.deriveFrequencies();
  displayChart();
  localizeSettings();
  hearing_.appear(stringReferences());
}

void ViewController::returnToMainScreen() {
  stopFreqPlay();
  viewWillAppear(true);
}

void ViewController::tickFree() {
  LumoListener& listener = *LumoListener::sharedListener();
  lastReading_.power = listener.averagePower();
  lastReading_.fine = hearing_.fineHearing();
  lastReading_.frequency = lastReading_.fine ? listener.fineFrequency() : listener.frequency();
  lastReading_.block = listener.newestBlock();
  hearing_.tick(lastReading_, sensitivity_, tick_.run(lastReading_, stringReferences()));
}

bool ViewController::stringSounds() const {
  return sensitivity_.judge(lastReading_.power, lastReading_.frequency) !=
             Sensitivity::Gate::Clear ||
         tuningFork_.curPlayState == TuningFork::Playing;
}

StringReferences ViewController::stringReferences() const {
  StringReferences references;
  for (std::size_t i = 0; i < references.size(); ++i) {
    references[i] = {calibration_.frequencies()[i], calibration_.toleranceBases()[i],
                     kStringNotes[i]};
  }
  return references;
}

void ViewController::micSensitivity(Slider& sender) {
  sensitivity_.micSensitivity(sender, micSensitivitySlider, platform_.settings, platform_.log);
}

void ViewController::checkVolume() {
  showVolumeWarning(platform_.audioSession.outputVolume());
}

void ViewController::choosePreset(std::int64_t a4InHz) {
  calibration_.choosePreset(*presetFor(a4InHz), [this] {
    promptToReview();
    removeRings();
  });
  hearing_.followCalibration(stringReferences());
  if (demoModeEnabled_) demoMode();
}

void ViewController::setFrequencyValue(const Stepper& sender) {
  calibration_.setFrequencyValue(sender);
  if (demoModeEnabled_) demoMode();
}

void ViewController::displayChart() {
  calibration_.displayChart();
  hearing_.followCalibration(stringReferences());
  if (demoModeEnabled_) demoMode();
}

void ViewController::toggleFreqChart(const Switch& sender) {
  calibration_.chart().toggleFreqChart(sender, platform_.settings, platform_.log);
}

void ViewController::playString(int number) {
  const double frequency = calibration_.frequencies()[static_cast<std::size_t>(number - 1)];
  tuningFork_.play(number, frequency, !demoModeEnabled_);
}

void ViewController::localizeSettings() {
  endpin::localizeSettings(platform_.bundle, *this);
}

void ViewController::displayAboutText() {
  endpin::displayAboutText(platform_.bundle, *this);
}

void ViewController::demoMode() {
  goToSettingsButton.setEnabled(true);
  tuningForkButton.setEnabled(true);
  setTunedStringsHidden(false);
  setLamp("green64.png", "green128.png");
  feedback_.displayTunedString(1);
  noteDisplay.setText(kStringNotes[0]);
  freq_label.setText(fmt::format("{:.1f}Hz", calibration_.frequencies()[0]));
}

void ViewController::promptToReview() {
  if (demoModeEnabled_) return;
  endpin::promptToReview(platform_.settings, runCount_);
}

}  // namespace endpin
