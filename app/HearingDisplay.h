// What the screen tells of hearing itself: how loud it is, why nothing can be heard, which
// microphone is used, whether fine hearing is on, which string only the ear can judge, and what is
// spoken to who cannot see. It acts on the screen beside the tuner and never on it.
// Owned by the screen controller. Thread: main.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ports/Bundle.h"
#include "ports/Microphones.h"
#include "ports/Outlets.h"
#include "ports/SettingsStore.h"
#include "tuner/DetectionTick.h"
#include "tuner/Sensitivity.h"
#include "tuner/StringRecognition.h"

namespace endpin {

struct HearingOutlets {
  Label announcement;   // to be spoken whenever it changes to a text
  Meter inputLevel;     // 0 silence, 1 to 3 too quiet, 4 to 7 loud enough
  Label firstNoteHint;  // a first start, until a note is heard; empty otherwise
  Label troubleTitle;   // why nothing can be heard; empty: it can
  Label troubleRemedy;  // what to do about it

  Label microphoneLabel;         // caption
  Label microphoneName;          // of the one in use
  ChoiceList microphoneChoices;  // the system's choice first
  Label fineHearingLabel;        // caption
  Label fineHearingHint;         // what it does, or what it would do now
  Switch fineHearingSwitch;

  Label byEarMark{"", true};  // of the string that has to be tuned by ear
  Label byEarHint{"", true};  // the same in a sentence
  Button fineHearingButton;   // the way out; shown with the hint
};

class HearingDisplay {
 public:
  static constexpr int kQuietSteps = 3;  // of the level, heard but too quiet
  static constexpr int kLoudSteps = 4;

  // They outlive the display.
  struct Ports {
    SettingsStore& settings;
    const Bundle& bundle;
    Microphones* microphones;  // null: the platform cannot tell of them
  };

  // `fineByDefault`: fine hearing is on as long as the user has not chosen.
  HearingDisplay(HearingOutlets& outlets, const Ports& ports, bool fineByDefault);

  // Before the listener starts: it is to use the microphone that was chosen.
  void begin();

  // The screen appears, its settings are restored, the strings are `references`.
  void appear(const StringReferences& references);

  // The four strings are others.
  void followCalibration(const StringReferences& references);

  // After each detection tick.
  void tick(const Reading& reading, const Sensitivity& sensitivity, const Judgement& judged);

  // The user chose. Both are kept, and in force at once.
  void chooseMicrophone(const ChoiceList& sender);
  void setFineHearing(bool on);

  // For this run only; nothing is kept.
  void useFineHearing(bool on);

  [[nodiscard]] bool fineHearing() const { return fine_; }

 private:
  void restoreFineHearing();
  void showFineHearing();
  void showTrouble(HearingTrouble trouble);
  void followTrouble();
  void showMicrophones();
  void showLevel(float power, const Sensitivity& sensitivity);
  void followFirstNote(const Judgement& judged, float frequency);
  void speakOfStrings(const Judgement& judged, std::uint64_t block);
  void speak(std::string text);
  [[nodiscard]] std::string text(std::string_view key) const;
  [[nodiscard]] std::string text(std::string_view key, std::string_view filledIn) const;

  HearingOutlets& outlets_;
  Ports ports_;
  bool fine_ = false;

  StringReferences references_{};
  bool deaf_ = false;  // the default estimator has no answer inside some string's band

  std::string chosenId_;  // of the microphone; empty: the system's choice
  std::string chosenName_;
  std::vector<Microphone> listed_;   // the lines of the choice list after the first
  std::uint64_t listedChanges_ = 0;  // of the microphones, when it was made

  HearingTrouble shown_ = HearingTrouble::None;
  int troubledTicks_ = 0;
  bool firstAppearance_ = true;
  int notes_ = 0;                 // ticks in a row that heard a pitch, on a first start
  int spokenString_ = 0;          // the one that was announced, until it is let go
  std::uint64_t blockLetGo_ = 0;  // the newest one when a string was let go last
};

}  // namespace endpin
