// Samples, levels and touches through listener, estimator, recognition and feedback. After each
// tick the screen must agree with what was heard.
//
// An input is an A4 (8 bytes) and then actions of one byte and what they need, see kActions.
#include <fmt/format.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "adapters/offline/MemoryStore.h"
#include "app/ScreenTable.h"
#include "audio/FineEstimator.h"
#include "audio/LumoListener.h"
#include "calibration/Presets.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/TunerOnFakes.h"

namespace endpin::fuzzing {
namespace {

constexpr int kMostActions = 20;  // a transform each

class PitchRun {
 public:
  explicit PitchRun(Input& input) : input_(input), tuner_(savedRun(input)) {}

  void go() {
    for (int i = 0; i < kMostActions && !input_.ended(); ++i) {
      (this->*kActions[input_.choice(kActions.size())])();
      tuner_.controller.tickFree();
      checkTick();
    }
  }

 private:
  using Action = void (PitchRun::*)();
  static const std::array<Action, 10> kActions;

  SettingsStore& savedRun(Input& input) {
    store_.setBool("NewFirstLaunchCello", true);
    store_.setInteger("a4InHzSavedValue", input.number<std::int64_t>());
    store_.setInteger("soundNotificationEnabled", 1);
    return store_;
  }

  // The fine estimator promises a pitch or none, whatever it is given.
  static void hearFinely(const std::vector<std::int16_t>& block, std::uint32_t byteLength) {
    static FineEstimator estimator;
    const double hertz = static_cast<double>(estimator.estimate(block.data(), byteLength));
    require(hertz == 0 || (hertz >= FineEstimator::kLowestPitch && hertz < 3509.75),
            "a pitch lies in the spectrum", fmt::format("{}", hertz));
  }

  // A block as long as the platform hands over, odd lengths included.
  void hearBytes() {
    const std::size_t length = input_.number<std::uint16_t>() % (kBlockBytes + 1);
    std::vector<std::int16_t> block(kBlockBytes / 2);
    const auto given = input_.bytes(length);
    if (!given.empty()) std::memcpy(block.data(), given.data(), given.size());
    LumoListener::sharedListener()->setAudioBuffer(block.data(),
                                                   static_cast<std::uint32_t>(length));
    hearFinely(block, static_cast<std::uint32_t>(length));
  }

  // The same few bytes again and again, loud and periodic.
  void hearPattern() {
    const auto pattern = input_.bytes(1 + input_.choice(255));
    std::vector<std::int16_t> block(kBlockBytes / 2);
    for (std::size_t i = 0; i < block.size() && !pattern.empty(); ++i) {
      block[i] = static_cast<std::int16_t>(pattern[i % pattern.size()] << 8);
    }
    tuner_.fake.input.queue->deliver(block);
    hearFinely(block, kBlockBytes);
  }

  void bow(double hertz) {
    std::vector<std::int16_t> block(kBlockBytes / 2);
    for (std::size_t n = 0; n < block.size(); ++n) {
      double sum = 0;
      for (int h = 1; h <= 6; ++h) {
        const double turns = hertz * h * static_cast<double>(n) / kCaptureRate;
        sum += 3000.0 / h * std::sin(2 * std::numbers::pi * turns);
      }
      block[n] = static_cast<std::int16_t>(sum);
    }
    tuner_.fake.input.queue->deliver(block);
    hearFinely(block, kBlockBytes);
  }
  void bowAnything() { bow(input_.number<std::uint16_t>() / 50.0); }
  void bowString() { bow(tuner_.controller.calibration().frequencies()[input_.choice(4)]); }

  void setLevel() { tuner_.fake.input.queue->level = {input_.number<float>(), 0}; }
  void setCommonLevel() {
    tuner_.fake.input.queue->level = {static_cast<float>(input_.choice(40)) / 4000.0F, 0};
  }

  void touchPreset() {
    // The presets come first in the table.
    actionTable()[input_.choice(kPresets.size())].call(tuner_.controller, nullptr);
  }
  void touchStepper() {
    Stepper& stepper = tuner_.controller.setFrequencyValueStepper;
    stepper.setValue(input_.number<std::uint16_t>() / 16.0);
    tuner_.controller.setFrequencyValue(stepper);
  }
  void touchSlider() {
    Slider& slider = tuner_.controller.micSensitivitySlider;
    slider.setValue(input_.number<std::int16_t>() / 1000.0);
    tuner_.controller.micSensitivity(slider);
  }
  void letTimePass() { tuner_.runLoop.advance(static_cast<double>(input_.choice(20))); }

  void checkTick() {
    const auto& controller = tuner_.controller;
    const Reading& reading = controller.lastReading();
    const double hertz = static_cast<double>(reading.frequency);
    require(std::isfinite(hertz) && hertz >= 0 && hertz < kCaptureRate / 2,
            "a frequency lies in the spectrum", fmt::format("{}", hertz));
    const double bin = hertz * PitchEstimator::kTransformSize / kCaptureRate;
    require(std::abs(bin - std::round(bin)) < 0.01, "a frequency is a bin's",
            fmt::format("{}", hertz));
    checkScreen();
    switch (controller.sensitivity().judge(reading.power, reading.frequency)) {
      case Sensitivity::Gate::Clear:
        require(tuner_.controller.freq_label.text().empty(), "too quiet shows no frequency");
        require(!isGreen(), "too quiet is not green");
        break;
      case Sensitivity::Gate::Hold:
        break;
      case Sensitivity::Gate::Detect:
        checkJudged(hertz);
    }
    beepsBefore_ = tuner_.fake.players.plays;
  }

  [[nodiscard]] bool isGreen() const {
    return tuner_.controller.LEDDisplay.image() == "green64.png";
  }

  // What holds whatever was heard.
  void checkScreen() const {
    ViewController& screen = tuner_.controller;
    require((screen.LEDDisplay128.image() == "green128.png") == isGreen(), "the lamps agree");
    require(screen.tunedString5.hidden() != isGreen(), "the picture shows with the green lamp");
    for (int number = 1; number <= 4; ++number) {
      const bool ring = !screen.ring(number).image().empty();
      require(ring == tuner_.controller.feedback().ringShown(number), "rings are what they seem");
      require(!ring || tuner_.controller.feedback().stringTuned(number), "a ring was in tune");
    }
  }

  void checkJudged(double hertz) const {
    const StringReferences references = tuner_.controller.stringReferences();
    int found = 0;
    int inTune = 0;
    for (int number = 1; number <= 4; ++number) {
      const auto place = static_cast<std::size_t>(number - 1);
      if (!bandOf(number, references[place]).contains(hertz)) continue;
      ++inTune;
      if (found == 0) found = number;
    }
    // An A4 of 0 puts all four strings in the same place.
    require(inTune <= 1 || references[0].frequency == 0, "one string in tune",
            fmt::format("{}", hertz));
    require(matchingString(hertz, references) == found, "the string in tune is the one found");
    if (found != 0) {
      checkInTune(found, references[static_cast<std::size_t>(found - 1)].noteName);
    } else {
      require(tuner_.fake.players.plays == beepsBefore_, "no beep without a string");
    }
  }

  void checkInTune(int number, const char* noteName) const {
    const auto& feedback = tuner_.controller.feedback();
    require(isGreen(), "in tune is green");
    require(feedback.ringShown(number) && feedback.stringTuned(number), "in tune has its ring");
    require(tuner_.controller.noteDisplay.text() == noteName, "in tune has its name");
    require(tuner_.fake.players.plays <= beepsBefore_ + 1, "in tune beeps once");
  }

  Input& input_;
  MemoryStore store_;
  TunerOnFakes tuner_;
  int beepsBefore_ = 0;
};

const std::array<PitchRun::Action, 10> PitchRun::kActions = {
    &PitchRun::hearBytes,   &PitchRun::hearPattern,  &PitchRun::bowAnything,
    &PitchRun::bowString,   &PitchRun::setLevel,     &PitchRun::setCommonLevel,
    &PitchRun::touchPreset, &PitchRun::touchStepper, &PitchRun::touchSlider,
    &PitchRun::letTimePass};

}  // namespace
}  // namespace endpin::fuzzing

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace endpin::fuzzing;
  Input input(data, size);
  PitchRun(input).go();
  return 0;
}
