// The controller of the one screen: it owns the outlets, offers every user action and every step of
// start-up by its own name, and introduces the rooms to each other. What is done in each lives in
// the rooms.
//
// The layout connects the outlets and calls the actions; the application shell calls viewDidLoad
// once and viewWillAppear at each appearance. Thread: main.
#pragma once

#include <cstdint>
#include <functional>

#include "app/HearingDisplay.h"
#include "app/Localisation.h"
#include "calibration/Calibration.h"
#include "calibration/CalibrationOutlets.h"
#include "calibration/TuningFork.h"
#include "ports/Platform.h"
#include "tuner/DetectionTick.h"
#include "tuner/Sensitivity.h"
#include "tuner/TunedStringFeedback.h"
#include "tuner/TunerOutlets.h"

namespace endpin {

class ViewController : public TunerOutlets,
                       public CalibrationOutlets,
                       public AppOutlets,
                       public HearingOutlets {
 public:
  // With demo mode the screen shows one string in tune, and there is no sound in either direction:
  // a choice of the build, see DemoMode.cpp.
  static const bool kDemoModeEnabled;

  // `platform` outlives the controller. Fine hearing is on by default where the face of the
  // application runs on small microphones, until the user chooses.
  explicit ViewController(Platform& platform, bool demoModeEnabled = kDemoModeEnabled,
                          bool fineHearingByDefault = false);
  ViewController(const ViewController&) = delete;
  ViewController& operator=(const ViewController&) = delete;

  // Start-up.
  void viewDidLoad();
  void viewWillAppear(bool animated);

  // Detection: one tick, the slider that sets its gates, the volume warning.
  void tickFree();
  void micSensitivity(Slider& sender);
  void checkVolume();

  // Feedback for a string in tune; strings are numbered 1 (A3) to 4 (C2).
  void displayTunedString(int number) { feedback_.displayTunedString(number); }
  void removeRings() { feedback_.removeRings(); }
  void resetTuningBools() { feedback_.resetTuningBools(); }
  void play1stSoundOnce() { feedback_.playSoundOnce(1); }
  void play2ndSoundOnce() { feedback_.playSoundOnce(2); }
  void play3rdSoundOnce() { feedback_.playSoundOnce(3); }
  void play4thSoundOnce() { feedback_.playSoundOnce(4); }
  void prepareBeepSound() { feedback_.prepareBeepSound(); }
  void disableTemporarilySoundConfirmation() { feedback_.disableTemporarilySoundConfirmation(); }
  void enableSoundConfirmation() { feedback_.enableSoundConfirmation(); }
  void soundNotificationAction(const Switch& sender) { feedback_.soundNotificationAction(sender); }
  void toggleStringSounds(const Switch& sender) { feedback_.toggleStringSounds(sender); }

  // Calibration.
  void setA392() { choosePreset(392); }
  void setA415() { choosePreset(415); }
  void setA432() { choosePreset(432); }
  void setA440() { choosePreset(440); }
  void setA441() { choosePreset(441); }
  void setA442() { choosePreset(442); }
  void setA443() { choosePreset(443); }
  void setA444() { choosePreset(444); }
  void setA466() { choosePreset(466); }
  void setFrequencyValue(const Stepper& sender);
  void displayTemperamentName() { calibration_.displayTemperamentName(); }
  void displayChart();
  void toggleFreqChart(const Switch& sender);

  // Tuning fork.
  void setupAudio() { tuningFork_.setupAudio(); }
  void playA3() { playString(1); }
  void playD3() { playString(2); }
  void playG2() { playString(3); }
  void playC2() { playString(4); }
  void stopFreqPlay() { tuningFork_.stopFreqPlay(); }

  // Hearing: which microphone, and how finely.
  void chooseMicrophone(const ChoiceList& sender) { hearing_.chooseMicrophone(sender); }
  void toggleFineHearing(const Switch& sender) { hearing_.setFineHearing(sender.isOn()); }
  void turnOnFineHearing() { hearing_.setFineHearing(true); }
  // For this run only; nothing is kept.
  void useFineHearing(bool on) { hearing_.useFineHearing(on); }

  // What covered the main screen is gone, and the main screen appears again. No tone goes on.
  void returnToMainScreen();

  // Texts, demonstration, rating.
  void localizeSettings();
  void displayAboutText();
  void demoMode();
  void promptToReview();

  // What the listener said at the last tick, for status displays.
  [[nodiscard]] const Reading& lastReading() const { return lastReading_; }
  // Whether a string was heard at the last tick, or the tuning fork plays: no moment for questions.
  [[nodiscard]] bool stringSounds() const;
  // The centres and tolerance bases of the four in-tune bands now in force.
  [[nodiscard]] StringReferences stringReferences() const;

  [[nodiscard]] const Calibration& calibration() const { return calibration_; }
  [[nodiscard]] const Sensitivity& sensitivity() const { return sensitivity_; }
  [[nodiscard]] const TunedStringFeedback& feedback() const { return feedback_; }
  TuningFork& tuningFork() { return tuningFork_; }

  float harmPct = 0;  // declared for the tone's blend and gain; nothing reads them
  float outGain = 0;
  std::int64_t curToneType = 0;

  // The timer made last: ticks at first, the volume check from the first appearance on. Neither is
  // ever stopped.
  RunLoop::TimerId timer = 0;

 private:
  void choosePreset(std::int64_t a4InHz);
  void playString(int number);
  void configureAudioSession();

  Platform& platform_;
  const bool demoModeEnabled_;
  Sensitivity sensitivity_;
  TunedStringFeedback feedback_;
  Calibration calibration_;
  TuningFork tuningFork_;
  HearingDisplay hearing_;
  DetectionTick tick_;
  Reading lastReading_;
  std::int64_t runCount_ = 0;  // appearances of the screen, as read when the rating is tried
};

}  // namespace endpin
