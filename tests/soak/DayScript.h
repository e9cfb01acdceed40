// What happens in the virtual day: a seeded script of passages at the cello and of presses on the
// screen. Thread: main.
#pragma once

#include <array>
#include <cstdint>

#include "tests/soak/DayWorld.h"
#include "tests/soak/Dice.h"

namespace endpin::soak {

class DayScript {
 public:
  // `world` outlives the script.
  DayScript(DayWorld& world, std::uint32_t seed) : world_(world), dice_(seed) {}

  // Does what is due at this time, in seconds. Between two ticks.
  void follow(double now);

  // Puts everything back as the first hour began: for figures of equal states.
  void rest();

  // A string (1 to 4) that is bowed loudly and in tune, undisturbed, long enough to be found by
  // now; 0 for none.
  [[nodiscard]] int stringToBeFound(double now) const;

  // How often each press was made, in the order of the table in the source.
  static constexpr std::size_t kActions = 9;
  [[nodiscard]] const std::array<std::uint64_t, kActions>& presses() const { return presses_; }

 private:
  using Press = void (DayScript::*)();
  static const std::array<Press, kActions> kPresses;

  void nextPassage(double now);
  [[nodiscard]] Passage bowed();
  void press(double now);

  void choosePreset();
  void turnStepper();
  void moveSlider();
  void flipSoundSwitch();
  void flipOtherSwitches();
  void useTuningFork();
  void readTexts();
  void leave();
  void changeSurroundings();

  DayWorld& world_;
  Dice dice_;
  double passageEnds_ = 0;  // seconds
  double nextPress_ = 5;    // seconds
  int inTune_ = 0;          // string of the passage, when it is to be found
  double inTuneSince_ = 0;  // seconds
  double forkSince_ = -1;   // seconds; below 0 while the tuning fork is closed
  std::array<std::uint64_t, kActions> presses_{};
};

}  // namespace endpin::soak
