#include "tests/soak/DayScript.h"

#include <cmath>

namespace endpin::soak {
namespace {

constexpr double kLoud = 0.02;      // above every sensitivity
constexpr double kToBeFound = 1.5;  // seconds: two blocks and a tick

using Choice = void (ViewController::*)();
constexpr std::array<Choice, 9> kPresetButtons = {
    &ViewController::setA392, &ViewController::setA415, &ViewController::setA432,
    &ViewController::setA440, &ViewController::setA441, &ViewController::setA442,
    &ViewController::setA443, &ViewController::setA444, &ViewController::setA466};
constexpr std::array<Choice, 4> kTones = {&ViewController::playA3, &ViewController::playD3,
                                          &ViewController::playG2, &ViewController::playC2};

}  // namespace

const std::array<DayScript::Press, DayScript::kActions> DayScript::kPresses = {
    &DayScript::choosePreset,      &DayScript::turnStepper,
    &DayScript::moveSlider,        &DayScript::flipSoundSwitch,
    &DayScript::flipOtherSwitches, &DayScript::useTuningFork,
    &DayScript::readTexts,         &DayScript::leave,
    &DayScript::changeSurroundings};

void DayScript::follow(double now) {
  if (now >= passageEnds_) nextPassage(now);
  if (now >= nextPress_) press(now);
}

int DayScript::stringToBeFound(double now) const {
  return now - inTuneSince_ >= kToBeFound ? inTune_ : 0;
}

void DayScript::nextPassage(double now) {
  inTune_ = 0;
  inTuneSince_ = now;
  passageEnds_ = now + dice_.ratioBetween(0.3, 12);
  const double what = dice_.between(0, 1);
  if (what < 0.55) {
    world_.cellist.play(bowed());
  } else if (what < 0.65) {
    world_.cellist.play(
        {Passage::Kind::Harmonic, dice_.ratioBetween(0.001, 0.3), dice_.ratioBetween(500, 1400)});
  } else if (what < 0.8) {
    world_.cellist.play({Passage::Kind::Noise, dice_.ratioBetween(0.0008, 0.5)});
  } else {
    world_.cellist.play({});
  }
}

Passage DayScript::bowed() {
  const std::size_t row = dice_.below(4);
  Passage passage{Passage::Kind::Bow, dice_.ratioBetween(0.0008, 0.3),
                  world_.controller.stringReferences()[row].frequency};
  if (dice_.chance(0.05)) passage.level = 3;  // clipped
  const double how = dice_.between(0, 1);
  if (how < 0.5) {
    if (passage.level > kLoud) inTune_ = static_cast<int>(row) + 1;
  } else if (how < 0.8) {
    passage.frequency *= std::exp2(dice_.between(-60, 60) / 1200);  // cents
  } else {
    passage.glide = std::exp2(dice_.between(-100, 100) / 1200);
  }
  return passage;
}

void DayScript::press(double now) {
  const std::size_t which = dice_.below(kActions);
  ++presses_[which];
  (this->*kPresses[which])();
  if (world_.rating.alert && dice_.chance(0.2)) world_.answer(1);
  inTune_ = 0;  // what sounds now may be in tune no more
  nextPress_ = now + dice_.ratioBetween(1, 60);
}

void DayScript::choosePreset() {
  (world_.controller.*kPresetButtons[dice_.below(kPresetButtons.size())])();
}

void DayScript::turnStepper() {
  world_.screen.setFrequencyValueStepper.setValue(std::floor(dice_.between(380, 480)));
  world_.controller.setFrequencyValue(world_.screen.setFrequencyValueStepper);
}

void DayScript::moveSlider() {
  world_.screen.micSensitivitySlider.setValue(dice_.between(0, 10));
  world_.controller.micSensitivity(world_.screen.micSensitivitySlider);
}

void DayScript::flipSoundSwitch() {
  Switch& sound = world_.screen.soundNotificationSwitch;
  sound.setOn(!sound.isOn());
  world_.controller.soundNotificationAction(sound);
}

void DayScript::flipOtherSwitches() {
  Switch& chart = world_.screen.freqChartSwitch;
  chart.setOn(!chart.isOn());
  world_.controller.toggleFreqChart(chart);
  world_.controller.displayChart();
  Switch& strings = world_.screen.stringSoundsSwitch;
  strings.setOn(!strings.isOn());
  world_.controller.toggleStringSounds(strings);
}

// Opens the panel and plays, or stops and closes it.
void DayScript::useTuningFork() {
  ViewController& controller = world_.controller;
  if (controller.tuningFork().curPlayState == TuningFork::Stopped) {
    controller.disableTemporarilySoundConfirmation();
    (controller.*kTones[dice_.below(kTones.size())])();
  } else if (dice_.chance(0.3)) {
    (controller.*kTones[dice_.below(kTones.size())])();
  } else {
    controller.stopFreqPlay();
    controller.enableSoundConfirmation();
  }
}

void DayScript::readTexts() {
  world_.controller.displayAboutText();
  world_.controller.localizeSettings();
}

void DayScript::leave() {
  world_.leaveAndReturn();
}

// The volume knob, and the network.
void DayScript::changeSurroundings() {
  world_.session.volume = static_cast<float>(dice_.between(0, 1));
  world_.rating.flags = dice_.chance(0.7) ? kReachabilityReachable : 0;
}

void DayScript::rest() {
  ViewController& controller = world_.controller;
  world_.cellist.play({});
  world_.answer(1);
  controller.stopFreqPlay();
  controller.enableSoundConfirmation();
  controller.setA440();
  world_.answer(1);
  world_.screen.soundNotificationSwitch.setOn(true);
  controller.soundNotificationAction(world_.screen.soundNotificationSwitch);
  inTune_ = 0;
}

}  // namespace endpin::soak
