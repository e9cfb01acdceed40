// Hours of mixed playing, noise, silence and presses on the virtual clock. After every tick the
// screen is held against what is played and what was pressed: a few things that any cellist would
// call wrong. After each hour, what the application holds is compared with the first.
#include <fmt/ranges.h>
#include <malloc.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <random>

#include "adapters/bundle/FileBundle.h"
#include "app/Application.h"
#include "app/ScreenTable.h"
#include "audio/CaptureFormat.h"
#include "audio/CaptureQueue.h"
#include "tests/fakes/FakePlatform.h"
#include "tests/support/Tone.h"

namespace endpin::soak {
namespace {

// For labels whose texts differ in length and settings that are written late.
constexpr double kHeapMargin = 2048;  // bytes

constexpr std::array<const char*, 4> kNotes = {"A3", "D3", "G2", "C2"};

// Equal seeds give equal scripts on every machine, which the distributions of the standard library
// do not promise.
class Dice {
 public:
  explicit Dice(std::uint32_t seed) : engine_(seed) {}

  std::size_t below(std::size_t sides) { return engine_() % sides; }
  bool chance(double probability) { return between(0, 1) < probability; }
  double between(double low, double high) {
    return low + (high - low) * static_cast<double>(engine_()) / 4294967296.0;
  }
  // As often from 1 to 10 as from 10 to 100.
  double ratioBetween(double low, double high) { return low * std::pow(high / low, between(0, 1)); }

 private:
  std::mt19937 engine_;
};

// The application as it is at its tenth launch, on a platform in memory. What the fakes keep of the
// calls is forgotten tick by tick.
struct World : AudioInput {
  World() {
    settings.setInteger("numberOfRuns", 9);
    settings.setBool("soundNotificationEnabled", true);
    settings.setInteger("a4InHzSavedValue", 440);
    settings.setBool("NewFirstLaunchCello", true);
    application.launch();
  }

  [[nodiscard]] double now() const { return static_cast<double>(ticks) / 10; }  // seconds

  // Plays and runs the next tenth of a second with its tick.
  void tick() {
    const auto due = ++ticks * kCaptureRateDoubled / 20;
    std::vector<std::int16_t> captured(due - std::exchange(samples, due));
    const auto part = toPlay.first(std::min(toPlay.size(), captured.size()));
    std::copy(part.begin(), part.end(), captured.begin());
    toPlay = toPlay.subspan(part.size());
    microphone->deliver(captured);
    fakes.runLoop.runUntil(now());
    fakes.runLoop.delayed.clear();
    fakes.session.calls.clear();
    fakes.log.lines.clear();
  }

  std::unique_ptr<AudioInputQueue> newInput(const AudioStreamFormat& /*format*/,
                                            AudioInputCallback callback, void* userData) override {
    auto queue = std::make_unique<CaptureQueue>(callback, userData);
    microphone = queue.get();
    return queue;
  }

  std::span<const std::int16_t> toPlay;  // silence follows
  CaptureQueue* microphone = nullptr;    // the listener's
  std::uint64_t ticks = 0, samples = 0;
  fakes::FakePlatform fakes;
  MemoryStore settings;
  FileBundle bundle{{ENDPIN_RESOURCES, "en", "1.0"}, fakes.log};
  Platform platform{*this,    fakes.session, fakes.players, fakes.output, fakes.runLoop,
                    settings, fakes.device,  bundle,        fakes.log};
  Application application{platform, false};
  ViewController& controller = application.controller();
};

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
    press(dice.below(7));
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

  void press(std::size_t what) {
    ViewController& view = world.controller;
    switch (what) {
      case 0:
        return choosePreset(dice.below(9));
      case 1:
        a4Shown = std::floor(dice.between(380, 480));
        view.setFrequencyValueStepper.setValue(a4Shown);
        return act("setFrequencyValue", &view.setFrequencyValueStepper);
      case 2:
        view.micSensitivitySlider.setValue(dice.between(0, 10));
        return act("micSensitivity", &view.micSensitivitySlider);
      case 3:
        return flip("soundNotificationAction", view.soundNotificationSwitch);
      case 4:
        flip("toggleFreqChart", view.freqChartSwitch);
        view.displayChart();
        return flip("toggleStringSounds", view.stringSoundsSwitch);
      case 5:
        view.displayAboutText();
        return view.localizeSettings();
      default:
        world.fakes.session.volume = static_cast<float>(dice.between(0, 1));
    }
  }

  void act(std::string_view name, View* sender = nullptr) {
    perform(*actionNamed(name), world.controller, sender);
  }
  void flip(std::string_view action, Switch& control) {
    control.setOn(!control.isOn());
    act(action, &control);
  }
  void choosePreset(std::size_t which) {
    constexpr std::array<int, 9> kPitches = {392, 415, 432, 440, 441, 442, 443, 444, 466};
    act(fmt::format("setA{}", kPitches[which]));
    a4 = a4Shown = kPitches[which];
    rings = {};
  }
  // Silence, and everything as at the beginning: for figures of equal states.
  void rest() {
    play(Kind::Noise, 0);
    choosePreset(3);
    if (!beeps()) press(3);
  }
  [[nodiscard]] bool beeps() const { return world.controller.soundNotificationSwitch.isOn(); }

  World& world;
  Dice dice;
  Kind kind = Kind::Noise;
  double level = 0;
  double frequency = 0;         // hertz
  double since = 0;             // seconds
  double a4Shown = 440;         // hertz
  double a4 = 440;              // that the strings are tuned to: of the last preset
  std::array<bool, 4> rings{};  // lit, since the last preset
  double passageEnds = 0;       // seconds
  double nextPress = 5;         // seconds
  std::vector<std::int16_t> sound{};
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
      fmt::print("  at {:.2f} h: {} beeps, {:.0f} bytes\n", world_.now() / 3600, plays(), held);
      std::fflush(stdout);
      if (heldFirst == 0) heldFirst = held;
    }
    fmt::print("  {} ticks, in tune by string: {}\n", world_.ticks, fmt::join(inTune_, " "));
    atMost("strings never judged in tune", std::count(inTune_.begin(), inTune_.end(), 0), 2);
    atMost("contradictions", complaints_, 0);
    atMost("blocks lost", world_.microphone->lostBlocks(), 0);
    atMost("timers", world_.fakes.runLoop.timers.size(), 2);
    atMost("bytes held at the end beyond the first part", held - heldFirst, kHeapMargin);
    return kept_ ? 0 : 1;
  }

 private:
  using Kind = Script::Kind;
  static constexpr double kBin = kCaptureRate / 32768;  // hertz that the tuner tells apart
  static constexpr double kHeard = 1.19;      // seconds: by then a whole block is of the passage
  static constexpr double kBeepRearm = 15.2;  // seconds, and a tick
  static constexpr double kQuiet = 0.0015;    // levels: below the least sensitivity …
  static constexpr double kLoud = 0.02;       // … and above the greatest

  void atMost(const char* what, auto figure, double bound) {
    const bool kept = static_cast<double>(figure) <= bound;
    kept_ = kept_ && kept;
    fmt::print("  {:<46} {} (at most {}){}\n", what, figure, bound, kept ? "" : "  BROKEN");
  }

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

  [[nodiscard]] int plays() const { return world_.fakes.players.plays; }
  [[nodiscard]] double age() const { return world_.now() - script_.since; }
  [[nodiscard]] bool green() const { return screen_.LEDDisplay.image() == "green64.png"; }
  // To half a band, half a bin and a rounding.
  [[nodiscard]] bool sounds(double frequency) const {
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
      const bool lit = newRing || (named && (newNote || plays() > beeps_));
      const bool steady = script_.kind >= Kind::Thin && age() > kHeard;
      expect(!lit || !steady || sounds(script_.pitchOf(string)), "green for what is not played");
    }
  }

  void judgeSound() {
    inTuneNow_ = false;
    if (script_.level < kQuiet && age() > 0.25) {
      expect(!green() && shown_.empty() && note_.empty(), "something is lit in silence");
    }
    if (age() < kHeard || script_.kind != Kind::Bowed || script_.level < kLoud) return;
    expect(sounds(std::strtod(shown_.c_str(), nullptr)), "a frequency that is not played");
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
    const int beeps = plays() - std::exchange(beeps_, plays());
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
  }
  int beepsIn(int ticks) {
    const int before = plays();
    for (int i = 0; i < ticks; ++i) step();
    return plays() - before;
  }

  World world_;
  Script script_;
  ViewController& screen_ = world_.controller;
  const std::string& shown_ = screen_.freq_label.text();
  const std::string& note_ = screen_.noteDisplay.text();
  std::string greenNote_;  // at the last tick
  bool inTuneNow_ = false;
  std::array<int, 4> inTune_{};  // ticks
  int beeps_ = 0;
  double lastBeep_ = -kBeepRearm;  // seconds
  int complaints_ = 0;
  bool kept_ = true;
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
