// Makes the confirmation beep: endpin-make-beep OUTPUT.mp3
//
// A struck-bar sound on A6. That pitch is a harmonic of the A, D and G strings, so it sits well
// with the note that has just been found in tune, and it lies where the ear is keen and the cello's
// own sound already thins out.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <numbers>
#include <vector>

#include "tools/SoundWriter.h"

namespace {

constexpr int kSampleRate = 44100;
constexpr double kSeconds = 0.22;
constexpr double kAttack = 0.012;   // seconds; soft, so that nothing clicks in headphones
constexpr double kRelease = 0.060;  // seconds; the decaying tail is led to exact silence
constexpr double kPeak = 0.6;       // of full scale: -4.4 dB of headroom for the encoder

struct Partial {
  double hertz;
  double level;
  double decaySeconds;  // to 1/e
};

constexpr Partial kPartials[] = {
    {1760.0, 1.00, 0.090},
    {3520.0, 0.28, 0.050},
    {5280.0, 0.08, 0.025},
};

// Half a cosine wave from 0 to 1 while x goes from 0 to 1.
double fade(double x) {
  if (x <= 0.0) return 0.0;
  return x >= 1.0 ? 1.0 : 0.5 - 0.5 * std::cos(std::numbers::pi * x);
}

double sampleAt(double t) {
  double sum = 0.0;
  for (const Partial& partial : kPartials) {
    sum += partial.level * std::exp(-t / partial.decaySeconds) *
           std::sin(2.0 * std::numbers::pi * partial.hertz * t);
  }
  return sum * fade(t / kAttack) * fade((kSeconds - t) / kRelease);
}

std::vector<float> beep() {
  std::vector<float> samples(static_cast<std::size_t>(kSeconds * kSampleRate) + 1);
  float peak = 0.0F;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    samples[i] = static_cast<float>(sampleAt(static_cast<double>(i) / kSampleRate));
    peak = std::max(peak, std::abs(samples[i]));
  }
  for (float& sample : samples) sample *= static_cast<float>(kPeak) / peak;
  return samples;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: endpin-make-beep OUTPUT.mp3\n", stderr);
    return 2;
  }
  try {
    endpin::writeSound(argv[1], endpin::SoundFormat::Mp3, kSampleRate, beep());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "endpin-make-beep: %s\n", error.what());
    return 1;
  }
  return 0;
}
