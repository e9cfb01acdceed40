// What happens in the virtual day: a seeded script of passages at the cello and of presses on the
// screen, and what the user knows of it. Thread: main.
#pragma once

#include <array>
#include <cmath>

#include "tests/soak/DayWorld.h"

namespace endpin::soak {

class DayScript {
 public:
  // `world` outlives the script.
  DayScript(DayWorld& world, std::uint32_t seed) : world_(world), dice_(seed) {}

  // What the user asked for last.
  struct Wishes {
    std::size_t preset = 3;  // highlighted; a stepped pitch highlights A 440
    double a4Shown = 440;    // hertz
    double a4 = 440;         // that the strings are tuned to: of the last preset
    int presetsChosen = 0;
    bool sound = true;        // beeps
    bool fork = false;        // the tuning fork sounds
    double passageSince = 0;  // seconds
  };
  [[nodiscard]] const Wishes& wishes() const { return wishes_; }

  // Hertz, of A3, D3, G2 and C2.
  [[nodiscard]] double pitchOf(std::size_t string) const {
    constexpr std::array<int, 4> kBelowA4 = {12, 19, 26, 33};  // semitones
    return wishes_.a4 * std::exp2(-kBelowA4[string] / 12.0);
  }

  // Does what is due now. Between two ticks.
  void follow() {
    if (world_.now() >= passageEnds_) nextPassage();
    if (world_.now() >= nextPress_) press();
  }

  void play(const Passage& passage) {
    world_.cellist.play(passage);
    wishes_.passageSince = world_.now();
  }

  // Silence, and everything as at the beginning: for figures of equal states.
  void rest() {
    play({});
    passageEnds_ = world_.now();
    world_.answer();
    if (wishes_.fork) useTuningFork(false);
    choosePreset(3);
    world_.answer();
    if (!wishes_.sound) flipSoundSwitch();
  }

  // How often each press was made, in the order of press().
  [[nodiscard]] const std::array<std::uint64_t, 9>& presses() const { return presses_; }

 private:
  void nextPassage() {
    passageEnds_ = world_.now() + dice_.ratioBetween(0.3, 12);
    const double what = dice_.between(0, 1);
    if (what < 0.55) {
      play(bowed());
    } else if (what < 0.65) {
      play({dice_.ratioBetween(0.001, 0.3), kThin, dice_.ratioBetween(500, 1400)});
    } else if (what < 0.8) {
      play({dice_.ratioBetween(0.0008, 0.5)});
    } else {
      play({});
    }
  }

  // Half of them in tune, the others off by 3 to 30 cents or gliding.
  Passage bowed() {
    Passage passage{dice_.ratioBetween(0.0008, 0.3), kBowed, pitchOf(dice_.below(4))};
    if (dice_.chance(0.05)) passage.level = 3;
    const double how = dice_.between(0, 1);
    const double off = dice_.ratioBetween(3, 30) * (dice_.chance(0.5) ? 1 : -1);
    if (how > 0.8) {
      passage.glide = std::exp2(dice_.between(-100, 100) / 1200);
    } else if (how > 0.5) {
      passage.frequency *= std::exp2(off / 1200);
    }
    return passage;
  }

  void press() {
    // Each once before any comes twice: what is only made once is soon there.
    const auto fresh = std::find(presses_.begin(), presses_.end(), 0);
    const std::size_t which = fresh != presses_.end()
                                  ? static_cast<std::size_t>(fresh - presses_.begin())
                                  : dice_.below(presses_.size());
    ++presses_[which];
    switch (which) {
      case 0:
        choosePreset(dice_.below(9));
        break;
      case 1:
        turnStepper();
        break;
      case 2:
        world_.screen.micSensitivitySlider.setValue(dice_.between(0, 10));
        world_.controller.micSensitivity(world_.screen.micSensitivitySlider);
        break;
      case 3:
        flipSoundSwitch();
        break;
      case 4:
        flipOtherSwitches();
        break;
      case 5:
        useTuningFork(!wishes_.fork || dice_.chance(0.3));
        break;
      case 6:
        world_.controller.displayAboutText();
        world_.controller.localizeSettings();
        break;
      case 7:
        world_.leaveAndReturn();
        break;
      case 8:  // the volume knob, and the network
        world_.session.volume = static_cast<float>(dice_.between(0, 1));
        world_.rating.flags = dice_.chance(0.7) ? kReachabilityReachable : 0;
        break;
    }
    if (dice_.chance(0.2)) world_.answer();
    nextPress_ = world_.now() + dice_.ratioBetween(1, 60);
  }

  void choosePreset(std::size_t which) {
    constexpr std::array<std::pair<double, void (ViewController::*)()>, 9> kPresetButtons = {
        {{392, &ViewController::setA392},
         {415, &ViewController::setA415},
         {432, &ViewController::setA432},
         {440, &ViewController::setA440},
         {441, &ViewController::setA441},
         {442, &ViewController::setA442},
         {443, &ViewController::setA443},
         {444, &ViewController::setA444},
         {466, &ViewController::setA466}}};
    const auto& [a4, choose] = kPresetButtons[which];
    (world_.controller.*choose)();
    wishes_.preset = which;
    wishes_.a4 = wishes_.a4Shown = a4;
    ++wishes_.presetsChosen;
  }

  void turnStepper() {
    wishes_.a4Shown = std::floor(dice_.between(380, 480));
    wishes_.preset = 3;
    world_.screen.setFrequencyValueStepper.setValue(wishes_.a4Shown);
    world_.controller.setFrequencyValue(world_.screen.setFrequencyValueStepper);
  }

  void flipSoundSwitch() {
    wishes_.sound = !wishes_.sound;
    world_.screen.soundNotificationSwitch.setOn(wishes_.sound);
    world_.controller.soundNotificationAction(world_.screen.soundNotificationSwitch);
  }

  void flipOtherSwitches() {
    Switch& chart = world_.screen.freqChartSwitch;
    chart.setOn(!chart.isOn());
    world_.controller.toggleFreqChart(chart);
    world_.controller.displayChart();
    Switch& strings = world_.screen.stringSoundsSwitch;
    strings.setOn(!strings.isOn());
    world_.controller.toggleStringSounds(strings);
  }

  void useTuningFork(bool play) {
    constexpr std::array<void (ViewController::*)(), 4> kTones = {
        &ViewController::playA3, &ViewController::playD3, &ViewController::playG2,
        &ViewController::playC2};
    ViewController& controller = world_.controller;
    if (!play) {
      controller.stopFreqPlay();
      controller.enableSoundConfirmation();
      wishes_.fork = false;
      return;
    }
    if (!wishes_.fork) controller.disableTemporarilySoundConfirmation();
    (controller.*kTones[dice_.below(kTones.size())])();
    wishes_.fork = true;
  }

  DayWorld& world_;
  Dice dice_;
  Wishes wishes_;
  double passageEnds_ = 0;  // seconds
  double nextPress_ = 5;    // seconds
  std::array<std::uint64_t, 9> presses_{};
};

}  // namespace endpin::soak
