// Hours of mixed playing, noise, silence and presses on the virtual clock. After every tick the
// screen is held against what is played and what was pressed: a few things that any cellist would
// call wrong. After each hour, what the application holds is compared with the first.
#include <malloc.h>

#include <CLI/CLI.hpp>
#include <cmath>

#include "tests/soak/DayWorld.h"
#include "tests/soak/Soak.h"
#include "tests/support/Tone.h"

namespace endpin::soak {
namespace {

// For labels whose texts differ in length and settings that are written late.
constexpr double kHeapMargin = 2048;  // bytes

constexpr std::array<const char*, 4> kNotes = {"A3", "D3", "G2", "C2"};

// What happens, by a seeded script, and what the user knows of it.
struct Script {
  enum class Kind { Noise, Thin, Bowed };  // noise of level 0 is silence

  // Hertz.
  [[nodiscard]] double pitchOf(std::size_t string) const {
    constexpr std::array<int, 4> kBelowA4 = {12, 19, 26, 33};  // semitones
    return a4 * std::exp2(-kBelowA4[string] / 12.0);
  }

  // Does what is due now. Between two ticks.
  void follow() {
    if (world.now() >= passageEnds) nextPassage();
    if (world.now() < nextPress) return;
    presses[dice.below(presses.size())]();
    if (dice.chance(0.2)) world.answer();
    nextPress = world.now() + dice.ratioBetween(1, 60);
  }

  void nextPassage() {
    const double what = dice.between(0, 1);
    const double seconds = dice.ratioBetween(0.3, 12);
    const double loudness = dice.ratioBetween(0.001, 0.3);
    if (what < 0.55) {
      // Half of them in tune, the others off by 3 to 30 cents; some clipped.
      const double cents = dice.ratioBetween(3, 30) * (dice.chance(0.5) ? 1 : -1);
      const double pitch =
          pitchOf(dice.below(4)) * (dice.chance(0.5) ? 1 : std::exp2(cents / 1200));
      play(Kind::Bowed, seconds, dice.chance(0.05) ? 3 : loudness, pitch);
    } else if (what < 0.8) {
      play(what < 0.65 ? Kind::Thin : Kind::Noise, seconds, loudness, dice.ratioBetween(500, 1400));
    } else {
      play(Kind::Noise, seconds);
    }
  }

  void play(Kind newKind, double seconds, double newLevel = 0, double newFrequency = 0) {
    using namespace testing;
    constexpr double kRate = kCaptureRate;
    kind = newKind;
    level = newLevel;
    frequency = newFrequency;
    since = world.now();
    passageEnds = since + seconds;
    seconds += 0.1;  // the tick before the next one
    sound = toS16(kind == Kind::Bowed ? bowedTone(kRate, seconds, frequency, level)
                  : kind == Kind::Thin
                      ? scaledToRms(harmonics(kRate, seconds, frequency, {3, 2, 1}), level)
                      : noise(kRate, seconds, level, static_cast<std::uint32_t>(world.ticks)));
    world.toPlay = sound;
  }

  // Silence, and everything as at the beginning: for figures of equal states.
  void rest() {
    play(Kind::Noise, 0);
    stopFork();
    choosePreset(3);
    world.answer();
    if (!beeps()) flipSoundSwitch();
  }

  void choosePreset(std::size_t which) {
    using View = ViewController;
    constexpr std::array<int, 9> kPitches = {392, 415, 432, 440, 441, 442, 443, 444, 466};
    constexpr std::array<void (View::*)(), 9> kButtons = {
        &View::setA392, &View::setA415, &View::setA432, &View::setA440, &View::setA441,
        &View::setA442, &View::setA443, &View::setA444, &View::setA466};
    View& view = world.controller;  // GCC 12 has the wrong address checked without the name
    (view.*kButtons[which])();
    preset = which;
    a4 = a4Shown = kPitches[which];
    rings = {};
  }

  void flipSoundSwitch() {
    world.controller.soundNotificationAction(flipped(world.controller.soundNotificationSwitch));
  }
  [[nodiscard]] bool beeps() const { return world.controller.soundNotificationSwitch.isOn(); }
  static Switch& flipped(Switch& control) {
    control.setOn(!control.isOn());
    return control;
  }

  void playFork() {
    using View = ViewController;
    constexpr std::array<void (View::*)(), 4> kTones = {&View::playA3, &View::playD3, &View::playG2,
                                                        &View::playC2};
    fork = true;
    world.controller.disableTemporarilySoundConfirmation();
    View& view = world.controller;  // see above
    (view.*kTones[dice.below(kTones.size())])();
  }
  void stopFork() {
    fork = false;
    world.controller.stopFreqPlay();
    world.controller.enableSoundConfirmation();
  }

  DayWorld& world;
  Dice dice;
  Kind kind = Kind::Noise;
  double level = 0;
  double frequency = 0;         // hertz
  double since = 0;             // seconds
  std::size_t preset = 3;       // highlighted; a stepped pitch highlights A 440
  double a4Shown = 440;         // hertz
  double a4 = 440;              // that the strings are tuned to: of the last preset
  std::array<bool, 4> rings{};  // lit, since the last preset
  bool fork = false;
  double passageEnds = 0;  // seconds
  double nextPress = 5;    // seconds
  std::vector<std::int16_t> sound{};
  const std::array<std::function<void()>, 9> presses = {
      [this] { choosePreset(dice.below(9)); },
      [this] {
        a4Shown = std::floor(dice.between(380, 480));
        preset = 3;
        world.controller.setFrequencyValueStepper.setValue(a4Shown);
        world.controller.setFrequencyValue(world.controller.setFrequencyValueStepper);
      },
      [this] {
        world.controller.micSensitivitySlider.setValue(dice.between(0, 10));
        world.controller.micSensitivity(world.controller.micSensitivitySlider);
      },
      [this] { flipSoundSwitch(); },
      [this] {
        world.controller.toggleFreqChart(flipped(world.controller.freqChartSwitch));
        world.controller.displayChart();
        world.controller.toggleStringSounds(flipped(world.controller.stringSoundsSwitch));
      },
      [this] { !fork || dice.chance(0.3) ? playFork() : stopFork(); },
      [this] {
        world.controller.displayAboutText();
        world.controller.localizeSettings();
      },
      [this] { world.leaveAndReturn(); },
      [this] {
        world.volume = static_cast<float>(dice.between(0, 1));
        world.rating.flags = dice.chance(0.7) ? kReachabilityReachable : 0;
      }};
};

class Day {
 public:
  explicit Day(std::uint32_t seed) : script_{.world = world_, .dice = Dice(seed)} {}

  int run(double hours) {
    const double part = std::min(1.0, hours / 4);
    double heldFirst = 0;
    double held = 0;
    for (double played = part; played < hours + part / 2; played += part) {
      for (double tick = 0; tick < part * 36000; ++tick) {
        step();
        script_.follow();
      }
      held = rest();
      bounds_.tell(fmt::format("at {:.2f} h", world_.now() / 3600),
                   fmt::format("{} beeps, {:.0f} bytes", world_.players.plays(), held));
      if (heldFirst == 0) heldFirst = held;
    }
    report();
    bounds_.atMost("heap at the end beyond the first part", held - heldFirst, kHeapMargin, "bytes");
    return bounds_.exitCode();
  }

 private:
  using Kind = Script::Kind;
  static constexpr double kBin = kCaptureRate / 32768;  // hertz that the tuner tells apart
  static constexpr double kHeard = 1.19;      // seconds: by then a whole block is of the passage
  static constexpr double kBeepRearm = 15.2;  // seconds, and a tick
  static constexpr double kQuiet = 0.0015;    // levels: below the least sensitivity …
  static constexpr double kLoud = 0.02;       // … and above the greatest

  void step() {
    world_.tick();
    judgePictures();
    judgeNewLights();
    judgeSound();
    judgeBeep();
    judgeControls();
  }

  void expect(bool held, const char* complaint) {
    constexpr int kTold = 10;
    if (held || complaints_++ >= kTold) return;
    fmt::print("  at {:.1f} s, {:.2f} Hz, '{}' '{}': {}\n", world_.now(), script_.frequency, shown_,
               note_, complaint);
  }

  [[nodiscard]] double age() const { return world_.now() - script_.since; }
  [[nodiscard]] bool green() const { return screen_.LEDDisplay.image() == "green64.png"; }
  // To half a band, half a bin and a rounding.
  [[nodiscard]] bool plays(double frequency) const {
    return std::abs(frequency - script_.frequency) <= frequency / 850 + 0.16;
  }

  void judgePictures() {
    expect(screen_.LEDDisplay128.image() == (green() ? "green128.png" : "yellow128.png"),
           "the two lamps differ");
    expect(!green() || !note_.empty(), "a green lamp without a note");
    expect(screen_.tunedString5.hidden() != green(), "lamp and string picture differ");
  }

  // What lights up anew is a string that is played, in tune.
  void judgeNewLights() {
    const std::string note = green() ? note_ : "";
    const bool newNote = std::exchange(greenNote_, note) != note;
    for (std::size_t string = 0; string < 4; ++string) {
      const bool ring = !screen_.ring(static_cast<int>(string) + 1).image().empty();
      const bool newRing = !std::exchange(script_.rings[string], ring) && ring;
      const bool named = note == kNotes[string];
      expect(!newRing || named, "a ring from nothing");
      const bool lit = newRing || (named && (newNote || world_.players.plays() > beeps_));
      const bool steady = script_.kind >= Kind::Thin && age() > kHeard;
      expect(!lit || !steady || plays(script_.pitchOf(string)), "green for what is not played");
    }
  }

  void judgeSound() {
    inTuneNow_ = false;
    if (script_.level < kQuiet && age() > 0.25) {
      expect(!green() && shown_.empty() && note_.empty(), "something is lit in silence");
    }
    if (age() < kHeard || script_.kind != Kind::Bowed || script_.level < kLoud) return;
    expect(plays(std::strtod(shown_.c_str(), nullptr)), "a frequency that is not played");
    for (std::size_t string = 0; string < 4; ++string) {
      if (!mustBeFound(script_.pitchOf(string))) continue;
      inTuneNow_ = true;
      ++inTune_[string];
      expect(green() && note_ == kNotes[string] && script_.rings[string] &&
                 shown_ == fmt::format("{:.1f}Hz", script_.pitchOf(string)),
             "a string in tune is not shown so");
    }
  }

  // A string on pitch, where the bin that it falls into is well inside the band.
  [[nodiscard]] bool mustBeFound(double pitch) const {
    const double bin = kBin * std::round(pitch / kBin);
    return std::abs(script_.frequency - pitch) < 1e-6 &&
           std::abs(bin - pitch) < std::min(0.45 * kBin, pitch / 1000);
  }

  void judgeBeep() {
    const std::uint64_t plays = world_.players.plays();
    const std::uint64_t beeps = plays - std::exchange(beeps_, plays);
    if (beeps > 0) lastBeep_ = world_.now();
    expect(beeps <= 1, "beeps in one tick");
    expect(beeps == 0 || script_.beeps(), "a beep that was switched off");
    expect(beeps == 0 || green(), "a beep without a green lamp");
    expect(!inTuneNow_ || !script_.beeps() || world_.now() - lastBeep_ < kBeepRearm,
           "a beep is missing");
  }

  void judgeControls() {
    expect(screen_.calibrationFrequencyValue.text() == fmt::format("{}", script_.a4Shown),
           "the label of A4 is not A4");
    const Calibration& calibration = world_.controller.calibration();
    expect(calibration.frequencies() == calibration.toleranceBases(), "tolerances lag behind");
    for (std::size_t i = 0; i < kPresets.size(); ++i) {
      const bool highlighted =
          (screen_.*kPresets[i].button).backgroundImage() == "selectedFreqBg.png";
      expect(highlighted == (i == script_.preset), "the wrong preset is highlighted");
    }
    expect(script_.fork == world_.forkRuns, "the tuning fork does not do as it is told");
    expect(!script_.fork || world_.forkSounds(), "the tuning fork is silent");
  }

  // Silence, an A string and silence again, each long enough for every delayed call. Returns the
  // bytes held in the end.
  double rest() {
    script_.rest();
    expectQuiet();
    script_.play(Kind::Bowed, 20, 0.1, script_.pitchOf(0));
    expect(beepsIn(60) > 0, "no beep for a new string");
    expect(beepsIn(90) == 0, "a beep for a string that has beeped");
    expect(beepsIn(50) > 0, "no second beep for a string that goes on");
    script_.rest();
    expectQuiet();
    return static_cast<double>(mallinfo2().uordblks);
  }
  void expectQuiet() {
    beepsIn(10);  // of the block that is under way
    expect(beepsIn(190) == 0, "a beep in silence");
    expect(world_.runLoop.pending == 0 && world_.rating.work.empty(), "calls wait in silence");
  }
  std::uint64_t beepsIn(int ticks) {
    const std::uint64_t before = world_.players.plays();
    for (int i = 0; i < ticks; ++i) step();
    return world_.players.plays() - before;
  }

  void report() {
    bounds_.tell("ticks",
                 fmt::format("{}, in tune by string: {}", world_.ticks, fmt::join(inTune_, " ")));
    bounds_.atMost("strings never judged in tune",
                   static_cast<double>(std::count(inTune_.begin(), inTune_.end(), 0)), 2);
    const auto& asked = world_.askedAfter;
    bounds_.atMost("rating dialogs off from one a run",
                   std::abs(static_cast<double>(asked.size()) - 1), 0);
    bounds_.atMost("rating dialogs without ten seconds of silence",
                   static_cast<double>(std::count_if(asked.begin(), asked.end(),
                                                     [](int ticks) { return ticks < 100; })),
                   0);
    bounds_.atMost("contradictions", complaints_, 0);
    bounds_.atMost("blocks lost", static_cast<double>(world_.microphone->lostBlocks()), 0);
    bounds_.atMost("timers", world_.runLoop.timers, 2);
    bounds_.atMost("tone units", world_.forks, 1);
  }

  DayWorld world_;
  Script script_;
  Bounds bounds_;
  ViewController& screen_ = world_.controller;
  const std::string& shown_ = screen_.freq_label.text();
  const std::string& note_ = screen_.noteDisplay.text();
  std::string greenNote_;  // at the last tick
  bool inTuneNow_ = false;
  std::array<int, 4> inTune_{};  // ticks
  std::uint64_t beeps_ = 0;
  double lastBeep_ = -kBeepRearm;  // seconds
  int complaints_ = 0;
};

}  // namespace
}  // namespace endpin::soak

int main(int argc, char** argv) {
  double hours = 24;
  std::uint32_t seed = 1;
  CLI::App options("Hours at the cello on the virtual clock");
  options.add_option("--hours", hours, "of virtual time")->check(CLI::Range(0.05, 1000.0));
  options.add_option("--seed", seed, "of the script");
  CLI11_PARSE(options, argc, argv);
  fmt::print("Virtual soak: {} h, seed {}\n", hours, seed);
  return endpin::soak::Day(seed).run(hours);
}
