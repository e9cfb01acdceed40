// Holds the screen of the virtual day, after every tick, against what is played and what was
// pressed: a few things that any cellist would call wrong. It knows no rule of the tuner. Thread:
// main.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <string>

#include "tests/soak/DayScript.h"

namespace endpin::soak {

class DayJudge {
 public:
  // Both outlive the judge.
  DayJudge(const DayWorld& world, const DayScript& script) : world_(world), script_(script) {}

  // To be called after each tick. Returns what is wrong, or nothing.
  [[nodiscard]] std::string judge() {
    for (const auto rule :
         {&DayJudge::judgePictures, &DayJudge::judgeRings, &DayJudge::judgeSound,
          &DayJudge::judgeBeep, &DayJudge::judgeCalibration, &DayJudge::judgeTuningFork}) {
      if (std::string complaint = (this->*rule)(); !complaint.empty()) return complaint;
    }
    return {};
  }

  // Ticks at which each string had to be found in tune, and of any steady loud tone.
  [[nodiscard]] const std::array<std::uint64_t, 4>& inTune() const { return inTune_; }
  [[nodiscard]] std::uint64_t steady() const { return steady_; }

 private:
  static constexpr std::array<const char*, 4> kNotes = {"A3", "D3", "G2", "C2"};
  static constexpr double kBin = kCaptureRate / 32768;  // hertz that the tuner tells apart
  static constexpr double kHeard = 1.19;      // seconds: by then a whole block is of the passage
  static constexpr double kQuiet = 0.0015;    // levels: below the least sensitivity …
  static constexpr double kLoud = 0.02;       // … and above the greatest
  static constexpr double kBeepRearm = 15.2;  // seconds, and a tick

  [[nodiscard]] double passageAge() const { return world_.now() - script_.wishes().passageSince; }
  [[nodiscard]] bool green() const { return screen_.LEDDisplay.image() == "green64.png"; }

  // Whether `frequency` was played since a moment that may still be heard.
  [[nodiscard]] bool plays(double frequency) const {
    const Passage& passage = world_.cellist.passage();
    const double earlier = passage.frequency / std::pow(passage.glide, kHeard + 0.1);
    const auto [low, high] = std::minmax(passage.frequency, earlier);
    const double near = frequency / 850 + 0.16;  // half a band, half a bin and a rounding
    return low - near <= frequency && frequency <= high + near;
  }

  [[nodiscard]] std::string judgePictures() {
    const std::string& large = screen_.LEDDisplay128.image();
    if (large != (green() ? "green128.png" : "yellow128.png")) return "the two lamps differ";
    if (green() && screen_.noteDisplay.text().empty()) return "a green lamp without a note";
    for (const ImageView* picture :
         {&screen_.tunedString, &screen_.tunedString5, &screen_.tunedStringiPad}) {
      if (picture->hidden() == green()) return "lamp and string picture differ";
    }
    return {};
  }

  // What lights up anew is a string that is played, in tune.
  [[nodiscard]] std::string judgeRings() {
    const int presets = script_.wishes().presetsChosen;
    if (std::exchange(presetsChosen_, presets) != presets) rings_ = {};
    const std::string note = green() ? screen_.noteDisplay.text() : "";
    bool lit = std::exchange(note_, note) != note && !note.empty();
    for (std::size_t string = 0; string < 4; ++string) {
      const bool ring = !screen_.rings[string].image().empty();
      const bool wasThere = std::exchange(rings_[string], ring);
      if (!ring || wasThere) continue;
      if (note != kNotes[string]) return fmt::format("a ring of {} from nothing", kNotes[string]);
      lit = true;
    }
    lit = lit || world_.players.plays() > beeps_;
    if (!lit || passageAge() < kHeard || world_.cellist.passage().harmonics == 0) return {};
    const auto string = std::find(kNotes.begin(), kNotes.end(), note) - kNotes.begin();
    if (string < 4 && plays(script_.pitchOf(static_cast<std::size_t>(string)))) return {};
    return fmt::format("'{}' in tune while {:.2f} Hz is played", note,
                       world_.cellist.passage().frequency);
  }

  [[nodiscard]] std::string judgeSound() {
    inTuneNow_ = false;
    const Passage& passage = world_.cellist.passage();
    const std::string& shown = screen_.freq_label.text();
    const bool high = passage.harmonics == kThin && passage.frequency > 1001;
    if ((passage.level < kQuiet && passageAge() > 0.25) || (high && passageAge() > kHeard)) {
      const bool dark = !green() && shown.empty() && screen_.noteDisplay.text().empty();
      return dark ? "" : fmt::format("still '{}' in silence", shown);
    }
    if (passageAge() < kHeard || passage.harmonics != kBowed || passage.level < kLoud) return {};
    ++steady_;
    if (!plays(std::strtod(shown.c_str(), nullptr))) {
      return fmt::format("'{}' while {:.2f} Hz is played", shown, passage.frequency);
    }
    for (std::size_t string = 0; string < 4; ++string) {
      if (!mustBeFound(string)) continue;
      ++inTune_[string];
      inTuneNow_ = true;
      const std::string text = fmt::format("{:.1f}Hz", script_.pitchOf(string));
      if (!green() || screen_.noteDisplay.text() != kNotes[string] || shown != text) {
        return fmt::format("'{}' '{}' while {} is in tune", shown, screen_.noteDisplay.text(),
                           kNotes[string]);
      }
      if (!rings_[string]) return "in tune without its ring";
    }
    return {};
  }

  // A string on pitch, where the bin that it falls into is well inside the band.
  [[nodiscard]] bool mustBeFound(std::size_t string) const {
    const Passage& passage = world_.cellist.passage();
    const double pitch = script_.pitchOf(string);
    const double bin = kBin * std::round(pitch / kBin);
    return passage.glide == 1 && std::abs(passage.frequency - pitch) < 1e-6 &&
           std::abs(bin - pitch) < std::min(0.45 * kBin, pitch / 1000);
  }

  [[nodiscard]] std::string judgeBeep() {
    const std::uint64_t beeps =
        world_.players.plays() - std::exchange(beeps_, world_.players.plays());
    if (beeps > 0) lastBeep_ = world_.now();
    if (beeps > 1) return fmt::format("{} beeps in one tick", beeps);
    if (beeps == 1 && !script_.wishes().sound) return "a beep that was switched off";
    if (beeps == 1 && !green()) return "a beep without a green lamp";
    const bool due = inTuneNow_ && script_.wishes().sound;
    return due && world_.now() - lastBeep_ > kBeepRearm ? "a beep is missing" : "";
  }

  [[nodiscard]] std::string judgeCalibration() {
    const DayScript::Wishes& wishes = script_.wishes();
    if (screen_.calibrationFrequencyValue.text() != fmt::format("{}", wishes.a4Shown)) {
      return "the label of A4 is not A4";
    }
    const Calibration& calibration = world_.controller.calibration();
    if (calibration.frequencies() != calibration.toleranceBases()) return "tolerances lag behind";
    for (std::size_t i = 0; i < screen_.presets.size(); ++i) {
      const bool highlighted = screen_.presets[i].backgroundImage() == "selectedFreqBg.png";
      if (highlighted != (i == wishes.preset)) return "the wrong preset is highlighted";
    }
    return {};
  }

  [[nodiscard]] std::string judgeTuningFork() {
    const bool wanted = script_.wishes().fork;
    if (wanted != world_.output.running) return "the tuning fork does not do as it is told";
    return wanted && !world_.output.sounds() ? "the tuning fork is silent" : "";
  }

  const DayWorld& world_;
  const DayScript& script_;
  const TerminalScreen& screen_ = world_.screen;
  std::array<bool, 4> rings_{};  // shown at the last tick
  int presetsChosen_ = 0;
  std::string note_;  // that was green at the last tick
  bool inTuneNow_ = false;
  std::uint64_t beeps_ = 0;
  double lastBeep_ = -kBeepRearm;  // seconds
  std::array<std::uint64_t, 4> inTune_{};
  std::uint64_t steady_ = 0;
};

}  // namespace endpin::soak
