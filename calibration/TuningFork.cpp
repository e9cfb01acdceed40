#include "calibration/TuningFork.h"

#include <fmt/format.h>

#include <cstddef>
#include <utility>

#include "calibration/StringFrequencies.h"

namespace endpin {
namespace {

constexpr AudioStreamFormat kToneFormat = {
    .mSampleRate = ToneSynthesizer::kSampleRate,
    .mFormatID = kAudioFormatLinearPCM,
    .mFormatFlags = kAudioFormatFlagIsSignedInteger | kAudioFormatFlagIsPacked,
    .mBytesPerPacket = 4,
    .mFramesPerPacket = 1,
    .mBytesPerFrame = 4,
    .mChannelsPerFrame = 2,
    .mBitsPerChannel = 16,
    .mReserved = 0};

}  // namespace

void TuningFork::setupAudio() {
  std::unique_ptr<AudioOutputUnit> unit = output_.newOutputUnit();
  if (!unit) return;
  unit->setStreamFormat(kToneFormat);
  unit->setRenderCallback(ToneSynthesizer::renderTone, &synthesizer_);
  unit->initialize();
  toneUnits_.push_back(std::move(unit));
}

void TuningFork::setPlayState(PlayState state) {
  curPlayState = state;
  outlets_.stopTFButton.setEnabled(state == Playing);
}

void TuningFork::play(int number, double frequency, bool audible) {
  outlets_.tfnoteDisplay.setText(kStringNotes[static_cast<std::size_t>(number - 1)]);
  outlets_.tfFreqLabel.setText(fmt::format("{:.1f}Hz", frequency));
  synthesizer_.toneFrequency = static_cast<float>(frequency);
  if (!audible) return;
  setPlayState(Playing);
  if (!toneUnits_.empty()) toneUnits_.back()->start();
}

void TuningFork::stopFreqPlay() {
  if (curPlayState != Playing) return;
  setPlayState(Stopped);
  if (!toneUnits_.empty()) toneUnits_.back()->stop();
}

}  // namespace endpin
