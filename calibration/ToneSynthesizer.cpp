#include "calibration/ToneSynthesizer.h"

#include <algorithm>
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
  const double held = scaled >= kLeast ? std::min(scaled, kMost) : kLeast;  // not a number: least
  const auto low = static_cast<std::uint32_t>(static_cast<std::int32_t>(held)) & 0xFFFFU;
  return low | low << 16U;
}

}  // namespace

void ToneSynthesizer::sweepPhase(std::size_t frames, Sweep& sweep) {
  double phase = oscillators_.tonePhase;
  for (std::size_t i = 0; i < frames; ++i) {
    const float frequency = toneFrequency.load(std::memory_order_relaxed);
    sweep.increment[i] = static_cast<double>(frequency / static_cast<float>(kSampleRate));
    sweep.sine[i] = std::sin(phase);
    const double next = phase + sweep.increment[i] * kTwoPi;
    phase = next > kTwoPi ? next - kTwoPi : next;
    sweep.nextPhase[i] = phase;
  }
  oscillators_.tonePhase = phase;
}

// Each sample blends the sine with the waveform that the sample before left; all three waveforms
// always run.
void ToneSynthesizer::sweepWaveforms(std::size_t frames, const Sweep& sweep,
                                     std::uint32_t* output) {
  Oscillators o = oscillators_;
  for (std::size_t i = 0; i < frames; ++i) {
    const std::uint64_t tone = curTone.load(std::memory_order_relaxed);
    const double s = sweep.sine[i];
    const double w = tone == Square     ? o.squareValue
                     : tone == Sawtooth ? o.sawtoothValue
                     : tone == Triangle ? o.triangleValue
                                        : s;
    output[i] = frameOf(s + (w - s) * static_cast<double>(kHarmonicPercent) / 100.0);

    o.tonePhaseIncrement = sweep.increment[i];
    o.triangleValue += static_cast<double>(o.triangleDirection * 4.0F) * o.tonePhaseIncrement;
    if (std::abs(o.triangleValue) > 1.0) {
      o.triangleValue =
          (2.0 - std::abs(o.triangleValue)) * static_cast<double>(o.triangleDirection);
      o.triangleDirection = -o.triangleDirection;
    }
    o.sawtoothValue += 2.0 * o.tonePhaseIncrement;
    if (o.sawtoothValue > 1.0) o.sawtoothValue -= 2.0;
    o.squareValue = sweep.nextPhase[i] <= kPi ? 1.0 : -1.0;
  }
  oscillators_ = o;
}

void ToneSynthesizer::render(std::uint32_t frames, std::uint32_t* output) {
  Sweep sweep;
  for (std::size_t done = 0; done < frames; done += kSweep) {
    const std::size_t count = std::min<std::size_t>(kSweep, frames - done);
    sweepPhase(count, sweep);
    sweepWaveforms(count, sweep, output + done);
  }
}

std::int32_t ToneSynthesizer::renderTone(void* userData, std::uint32_t frames,
                                         std::span<AudioOutputBuffer> buffers) {
  auto* synthesizer = static_cast<ToneSynthesizer*>(userData);
  for (const AudioOutputBuffer& buffer : buffers) synthesizer->render(frames, buffer.mData);
  return 0;
}

}  // namespace endpin
