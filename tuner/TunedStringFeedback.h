// Shows and confirms that a string is in tune: its ring, which stays until a calibration preset is
// chosen; its picture, in the variant made for the screen; one beep, re-armed after 15 seconds.
// Owned by the screen controller. Thread: main.
#pragma once

#include <array>
#include <memory>
#include <string>

#include "ports/AudioPlayer.h"
#include "ports/Bundle.h"
#include "ports/Device.h"
#include "ports/Log.h"
#include "ports/RunLoop.h"
#include "ports/SettingsStore.h"
#include "tuner/TunerOutlets.h"

namespace endpin {

class TunedStringFeedback {
 public:
  // Everything passed in outlives this.
  struct Ports {
    AudioPlayers& audioPlayers;
    RunLoop& runLoop;
    SettingsStore& settings;
    Device& device;
    Bundle& bundle;
    Log& log;
  };

  TunedStringFeedback(TunerOutlets& outlets, const Ports& ports);

  // Shows ring and picture of string `number`, 1 (A3) to 4 (C2); other numbers do nothing. A screen
  // of unknown height keeps the picture it has.
  void displayTunedString(int number);

  // Takes all rings away.
  void removeRings();

  // Re-arms the beep of all four strings.
  void resetTuningBools();

  // Marks the string as tuned and beeps, unless it has beeped since the last re-arm. Every beep
  // schedules a re-arm of its own, for all strings.
  void playSoundOnce(int number);

  // Makes a new beep player; a missing file leaves none, and the beep is skipped in silence.
  void prepareBeepSound();

  // Remember in the store whether the tuning fork is in use. The beep is held back by it only from
  // the next time that the settings are loaded.
  void disableTemporarilySoundConfirmation() { markTuningFork(true); }
  void enableSoundConfirmation() { markTuningFork(false); }

  // The two sound switches: flag, store, log.
  void soundNotificationAction(const Switch& sender);
  void toggleStringSounds(const Switch& sender);

  [[nodiscard]] bool stringTuned(int number) const { return tuned_[index(number)]; }
  [[nodiscard]] bool allStringsTuned() const;
  [[nodiscard]] bool beepPlayed(int number) const { return beepPlayed_[index(number)]; }
  [[nodiscard]] bool ringShown(int number) const { return ringShown_[index(number)]; }

  // In-memory switches, written by the actions and when the settings are loaded.
  bool soundNotificationOn = false;
  bool stringSoundsOn = false;  // nothing depends on it; the setting round-trips
  bool tuningForkInUse = false;

 private:
  static std::size_t index(int number) { return static_cast<std::size_t>(number - 1); }
  void showStringPicture(int number);
  void markTuningFork(bool inUse);
  void applySwitch(const Switch& sender, bool& flag, const char* key);

  TunerOutlets& outlets_;
  Ports ports_;
  std::array<bool, 4> tuned_{};       // set on every match, never cleared in a run
  std::array<bool, 4> beepPlayed_{};  // cleared together by resetTuningBools
  std::array<bool, 4> ringShown_{};   // cleared together by removeRings
  std::unique_ptr<AudioPlayer> beepSoundPlayer_;
};

}  // namespace endpin
