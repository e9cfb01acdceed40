#include "calibration/ToneSynthesizer.h"

#include <cmath>
#include <limits>

namespace endpin {
namespace {

constexpr double kTwoPi = 6.283185307179586;
constexpr double kPi = 3.141592653589793;

// Truncates toward zero, saturating; the low half of the result goes to both channels.
std::uint32_t frameOf(double mix) {
  constexpr double kMost = std::numeric_limits<std::int32_t>::max();
  constexpr double kLeast = std::numeric_limits<std::int32_t>::min();
  const double scaled = mix / kTwoPi * 32767.0 * 6.0 * 0.95;
  const double held = scaled > kMost ? kMost : scaled < kLeast ? kLeast : scaled;
  const auto low = static_cast<std::uint32_t>(static_cast<std::int32_t>(held)) & 0xFFFFU;
  return low | low << 16U;
}

}  // namespace

// The blend is made from the phase and the waveforms that the previous sample left.
double ToneSynthesizer::Oscillators::sample(std::uint64_t tone, float harmonicPercent) const {
  const double s = std::sin(tonePhase);
  const double w = tone == Square     ? squareValue
                   : tone == Sawtooth ? sawtoothValue
                   : tone == Triangle ? triangleValue
                                      : s;
  return s + (w - s) * static_cast<double>(harmonicPercent) / 100.0;
}

void ToneSynthesizer::Oscillators::advance(float frequency) {
  tonePhaseIncrement = static_cast<double>(frequency / static_cast<float>(kSampleRate));

  const double phase = tonePhase + tonePhaseIncrement * kTwoPi;
  tonePhase = phase > kTwoPi ? phase - kTwoPi : phase;

  triangleValue += static_cast<double>(triangleDirection * 4.0F) * tonePhaseIncrement;
  if (std::abs(triangleValue) > 1.0) {
    triangleValue = (2.0 - std::abs(triangleValue)) * static_cast<double>(triangleDirection);
    triangleDirection = -triangleDirection;
  }

  sawtoothValue += 2.0 * tonePhaseIncrement;
  if (sawtoothValue > 1.0) sawtoothValue -= 2.0;

  squareValue = tonePhase <= kPi ? 1.0 : -1.0;
}

void ToneSynthesizer::render(std::uint32_t frames, std::uint32_t* output) {
  Oscillators oscillators = oscillators_;  // in registers for the length of the buffer
  for (std::uint32_t i = 0; i < frames; ++i) {
    const std::uint64_t tone = curTone.load(std::memory_order_relaxed);
    output[i] = frameOf(oscillators.sample(tone, kHarmonicPercent));
    oscillators.advance(toneFrequency.load(std::memory_order_relaxed));
  }
  oscillators_ = oscillators;
}

std::int32_t ToneSynthesizer::renderTone(void* userData, std::uint32_t frames,
                                         std::span<AudioOutputBuffer> buffers) {
  auto* synthesizer = static_cast<ToneSynthesizer*>(userData);
  for (const AudioOutputBuffer& buffer : buffers) synthesizer->render(frames, buffer.mData);
  return 0;
}

}  // namespace endpin
