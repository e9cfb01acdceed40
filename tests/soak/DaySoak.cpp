// Hours of mixed playing, noise, silence and presses on the virtual clock. After every tick the
// screen is held against what is played and what was pressed: a few things that any cellist would
// call wrong. After each hour, what the application holds is compared with the first.
#include <fmt/ranges.h>
#include <malloc.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <random>

#include "app/Application.h"
#include "app/ScreenTable.h"
#include "audio/CaptureFormat.h"
#include "audio/CaptureQueue.h"
#include "calibration/StringFrequencies.h"
#include "tests/fakes/FakePlatform.h"
#include "tests/support/Tone.h"

namespace endpin::soak {
namespace {

constexpr double kHeapMargin = 2048;           // bytes: labels whose texts differ in length
constexpr double kBin = kCaptureRate / 32768;  // hertz that the tuner tells apart
constexpr double kHeard = 1.19;                // seconds: by then a whole block is of the passage
constexpr double kBeepRearm = 15.2;            // seconds, and a tick
constexpr double kQuiet = 0.0015;              // levels: below the least sensitivity …
constexpr double kLoud = 0.02;                 // … and above the greatest

// The application as it is at its tenth launch, on a platform in memory, whose fakes forget what
// they keep of the calls tick by tick.
class Day final : AudioInput {
 public:
  explicit Day(std::uint32_t seed) : dice_(seed) {
    settings_.setInteger("numberOfRuns", 9);
    settings_.setBool("soundNotificationEnabled", true);
    settings_.setInteger("a4InHzSavedValue", 440);
    settings_.setBool("NewFirstLaunchCello", true);
    application_.launch();
  }

  int run(double hours) {
    const double part = std::min(1.0, hours / 4);
    double heldFirst = 0, held = 0;
    for (double played = part; played < hours + part / 2; played += part) {
      for (double tick = 0; tick < part * 36000; ++tick) {
        step();
        if (now() >= passageEnds_) nextPassage();
        if (now() >= nextPress_) press();
      }
      held = rest();
      fmt::print("  at {:.2f} h: {} beeps, {:.0f} bytes\n", now() / 3600, beeps_, held);
      std::fflush(stdout);
      if (heldFirst == 0) heldFirst = held;
    }
    fmt::print("  {} ticks, in tune by string: {}\n", ticks_, fmt::join(inTune_, " "));
    atMost("strings never judged in tune", std::count(inTune_.begin(), inTune_.end(), 0), 2);
    atMost("contradictions", complaints_, 0);
    atMost("blocks lost", microphone_->lostBlocks(), 0);
    atMost("timers", fakes_.runLoop.timers.size(), 2);
    atMost("bytes held at the end beyond the first part", held - heldFirst, kHeapMargin);
    return kept_ ? 0 : 1;
  }

 private:
  // --- What happens, by a seeded script. Equal seeds give equal scripts on every machine, which
  // the distributions of the standard library do not promise.

  double between(double low, double high) {
    return low + (high - low) * static_cast<double>(dice_()) / 4294967296.0;
  }
  // As often from 1 to 10 as from 10 to 100.
  double ratioBetween(double low, double high) { return low * std::pow(high / low, between(0, 1)); }

  [[nodiscard]] double now() const { return static_cast<double>(ticks_) / 10; }  // seconds

  // More than half of them strings, half of those in tune, the others off by 3 to 30 cents; some
  // clipped.
  void nextPassage() {
    const double what = between(0, 1);
    const double seconds = ratioBetween(0.3, 12);
    const double level = ratioBetween(0.001, 0.3);
    if (what > 0.55) return play(seconds, what < 0.8 ? level : 0);
    const int sign = between(0, 1) < 0.5 ? 1 : -1;
    const double cents = sign * ratioBetween(3, 30);
    const double pitch = pitches_[dice_() % 4];
    const bool clipped = between(0, 1) < 0.05;
    const bool inTune = between(0, 1) < 0.5;
    play(seconds, clipped ? 3 : level, inTune ? pitch : testing::raisedByCents(pitch, cents));
  }

  // A bowed string, or noise; of level 0 it is silence.
  void play(double seconds, double level, double frequency = 0) {
    level_ = level;
    frequency_ = frequency;
    since_ = now();
    passageEnds_ = since_ + seconds;
    seconds += 0.1;  // the tick before the next one
    sound_ =
        testing::toS16(frequency > 0 ? testing::bowedTone(kCaptureRate, seconds, frequency, level)
                                     : testing::noise(kCaptureRate, seconds, level,
                                                      static_cast<unsigned>(ticks_)));
    toPlay_ = sound_;
  }

  void press() {
    nextPress_ = now() + ratioBetween(1, 60);
    switch (dice_() % 6) {
      case 0:
        return choosePreset(kPresets[dice_() % 9].a4InHz);
      case 1:
        screen_.setFrequencyValueStepper.setValue(std::floor(between(380, 480)));
        return screen_.setFrequencyValue(screen_.setFrequencyValueStepper);
      case 2:
        screen_.micSensitivitySlider.setValue(between(0, 10));
        return screen_.micSensitivity(screen_.micSensitivitySlider);
      case 3:
        return switchBeep(!beepIsOn());
      case 4:
        screen_.displayChart();
        screen_.displayAboutText();
        return screen_.localizeSettings();
      default:
        fakes_.session.volume = static_cast<float>(between(0, 1));
    }
  }
  void switchBeep(bool on) {
    screen_.soundNotificationSwitch.setOn(on);
    screen_.soundNotificationAction(screen_.soundNotificationSwitch);
  }
  void choosePreset(std::int64_t a4) {
    pitches_ = stringFrequencies(a4);
    perform(*actionNamed(fmt::format("setA{}", a4)), screen_, nullptr);
  }

  // A string, once nothing delayed is left of what was before, and silence again; everything else
  // as at the beginning. Returns the bytes held in the end.
  double rest() {
    choosePreset(440);
    switchBeep(true);
    play(20, 0);
    expect(beepsIn(200) <= 1, "a beep in silence");  // of the block that was under way
    play(20, 0.1, pitches_[0]);
    expect(beepsIn(60) > 0 && beepsIn(90) == 0 && beepsIn(50) > 0, "no beep, or too many");
    play(20, 0);
    beepsIn(200);
    return static_cast<double>(mallinfo2().uordblks);
  }
  int beepsIn(int ticks) {
    const int before = beeps_;
    for (int i = 0; i < ticks; ++i) step();
    return beeps_ - before;
  }

  // --- A tenth of a second with its tick, and what is seen of it.

  void step() {
    const auto due = ++ticks_ * kCaptureRateDoubled / 20;
    std::vector<std::int16_t> captured(due - std::exchange(samples_, due));
    const auto part = toPlay_.first(std::min(toPlay_.size(), captured.size()));
    std::copy(part.begin(), part.end(), captured.begin());
    toPlay_ = toPlay_.subspan(part.size());
    microphone_->deliver(captured);
    fakes_.runLoop.runUntil(now());
    fakes_.runLoop.delayed.clear();
    fakes_.session.calls.clear();
    fakes_.log.lines.clear();
    judge();
  }

  void judge() {
    const bool green = screen_.LEDDisplay.image() == "green64.png";
    const bool lit = std::exchange(green_, green ? note_ : "") != green_ && green;
    const int beeps = fakes_.players.plays - std::exchange(beeps_, fakes_.players.plays);
    if (beeps > 0) lastBeep_ = now();
    expect(beeps == 0 || (beeps == 1 && beepIsOn() && green), "a beep for nothing");
    const double age = now() - since_;
    if (level_ < kQuiet && age > 0.25) {
      expect(!green && shown_.empty() && note_.empty(), "something is lit in silence");
    }
    if (age > kHeard && level_ > kLoud && frequency_ > 0) judgeString(lit);
  }

  void judgeString(bool lit) {
    const auto near = [this](double hertz) {  // to half a band, half a bin and a rounding
      return std::abs(hertz - frequency_) <= hertz / 850 + 0.16;
    };
    expect(near(std::strtod(shown_.c_str(), nullptr)), "a frequency that is not played");
    for (std::size_t string = 0; string < 4; ++string) {
      const double pitch = pitches_[string];
      const bool named = green_ == kStringNotes[string];
      expect(!(lit && named) || near(pitch), "green for what is not played");
      // In tune, where the bin that the pitch falls into is well inside the band.
      const double offBin = std::abs(kBin * std::round(pitch / kBin) - pitch);
      if (std::abs(frequency_ - pitch) > 1e-6 || offBin > std::min(0.45 * kBin, pitch / 1000))
        continue;
      ++inTune_[string];
      expect(named && shown_ == fmt::format("{:.1f}Hz", pitch), "a string in tune not shown so");
      expect(!beepIsOn() || now() - lastBeep_ < kBeepRearm, "a beep is missing");
    }
  }

  void expect(bool held, const char* complaint) {
    constexpr int kTold = 10;
    if (held || complaints_++ >= kTold) return;
    fmt::print("  at {:.1f} s, {:.2f} Hz, '{}' '{}': {}\n", now(), frequency_, shown_, note_,
               complaint);
  }
  void atMost(const char* what, auto figure, double bound) {
    const bool kept = static_cast<double>(figure) <= bound;
    kept_ = kept_ && kept;
    fmt::print("  {:<46} {} (at most {}){}\n", what, figure, bound, kept ? "" : "  BROKEN");
  }
  [[nodiscard]] bool beepIsOn() const { return screen_.soundNotificationSwitch.isOn(); }

  std::unique_ptr<AudioInputQueue> newInput(const AudioStreamFormat& /*format*/,
                                            AudioInputCallback callback, void* userData) override {
    auto queue = std::make_unique<CaptureQueue>(callback, userData);
    microphone_ = queue.get();
    return queue;
  }

  std::mt19937 dice_;
  std::vector<std::int16_t> sound_;
  std::span<const std::int16_t> toPlay_;  // silence follows
  CaptureQueue* microphone_ = nullptr;    // the listener's
  std::uint64_t ticks_ = 0, samples_ = 0;
  fakes::FakePlatform fakes_;
  MemoryStore settings_;
  Platform platform_{*this,     fakes_.session, fakes_.players, fakes_.output, fakes_.runLoop,
                     settings_, fakes_.device,  fakes_.bundle,  fakes_.log};
  Application application_{platform_, false};
  ViewController& screen_ = application_.controller();
  const std::string& shown_ = screen_.freq_label.text();
  const std::string& note_ = screen_.noteDisplay.text();
  double level_ = 0;
  double frequency_ = 0;  // hertz; 0 for none
  double since_ = 0;      // seconds, as the next two
  double passageEnds_ = 0;
  double nextPress_ = 5;
  std::array<double, 4> pitches_ = stringFrequencies(440);  // of the last preset
  std::string green_;            // the note that is in tune at the last tick
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
