// Plays the four open strings one after the other, A3 D3 G2 C2, in tune at A4 = 440 Hz:
// endpin-make-four-strings OUTPUT.flac
//
// A synthesised bowing stands where a recording in exact tune is wanted: the same samples each
// time.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <numbers>
#include <random>
#include <utility>
#include <vector>

#include "calibration/StringFrequencies.h"
#include "tools/SoundWriter.h"

namespace {

constexpr int kSampleRate = 48000;
constexpr int kA4InHz = 440;
constexpr double kNoteSeconds = 3.0;
constexpr double kRestSeconds = 0.7;  // longer than one analysis block, so that silence is heard
constexpr double kLevel = 0.09;       // of full scale: a cello a metre or two from the microphone

struct Bowing {
  double hertz;    // the pitch, exact over the whole note
  double seconds;  // attack and decay included
  int sampleRate;  // hertz
  double level;    // RMS of the sustained note, of full scale
};

constexpr double kTwoPi = 2.0 * std::numbers::pi;
constexpr double kAttack = 0.09;            // seconds until the bow has caught the string
constexpr double kDecay = 0.40;             // seconds that the string rings after the bow has left
constexpr double kHighestPartial = 9000.0;  // hertz; above it a cello adds only bow noise
constexpr double kNoise = 0.02;             // bow noise against the tone, RMS
constexpr double kVibratoCents = 1.0;       // the left hand is off the string: only the bow sways
constexpr double kVibratoHertz = 4.7;
constexpr double kSwellHertz = 0.6;  // slow unevenness of the bow's pressure
constexpr double kSwellDepth = 0.12;

struct Resonance {
  double hertz;
  double gain;
  double width;  // hertz, half of the peak's width at half its height
};

// The air in the body, the two wood modes, and the hills that make the sound carry.
constexpr Resonance kBody[] = {
    {98.0, 1.2, 25.0},   {176.0, 1.6, 30.0},   {230.0, 1.3, 35.0},   {400.0, 0.9, 90.0},
    {700.0, 0.7, 160.0}, {1200.0, 0.8, 300.0}, {2300.0, 0.9, 600.0},
};

double bodyGain(double hertz) {
  double gain = 0.5;
  for (const Resonance& peak : kBody) {
    const double off = (hertz - peak.hertz) / peak.width;
    gain += peak.gain / (1.0 + off * off);
  }
  const double rollOff = hertz / 3500.0;
  return gain / (1.0 + rollOff * rollOff);
}

// A bowed string moves in a saw-tooth, whose partials fall as 1/k; the body shapes them.
std::vector<double> partialLevels(double fundamental) {
  const auto count = static_cast<std::size_t>(kHighestPartial / fundamental);
  std::vector<double> levels(count);
  for (std::size_t i = 0; i < count; ++i) {
    const double k = static_cast<double>(i + 1);
    levels[i] = bodyGain(k * fundamental) / k;
  }
  return levels;
}

// Phase of the fundamental in radians at time t, the sway of the pitch included.
double phaseAt(double hertz, double t) {
  const double deviation = hertz * (std::exp2(kVibratoCents / 1200.0) - 1.0);
  return kTwoPi * hertz * t +
         deviation / kVibratoHertz * (1.0 - std::cos(kTwoPi * kVibratoHertz * t));
}

double envelopeAt(double seconds, double t) {
  const auto smooth = [](double x) {
    const double clamped = std::clamp(x, 0.0, 1.0);
    return 0.5 - 0.5 * std::cos(std::numbers::pi * clamped);
  };
  const double ring = smooth((seconds - t) / kDecay);
  const double swell = 1.0 + kSwellDepth * std::sin(kTwoPi * kSwellHertz * t);
  return smooth(t / kAttack) * ring * ring * swell;
}

// Sum of level k × sin(k × phase). Each sine follows from the two before it:
// sin((k + 1)x) = 2 cos(x) sin(kx) - sin((k - 1)x).
double toneAt(const std::vector<double>& levels, double phase) {
  const double twiceCosine = 2.0 * std::cos(phase);
  double previous = 0.0;
  double current = std::sin(phase);
  double sum = 0.0;
  for (const double level : levels) {
    sum += level * current;
    previous = std::exchange(current, twiceCosine * current - previous);
  }
  return sum;
}

// Hiss of the hair on the string: white noise, its low end and its edge taken off.
class BowNoise {
 public:
  double next() {
    const double white = static_cast<double>(random_()) / 2147483648.0 - 1.0;
    low_ += 0.03 * (white - low_);
    high_ += 0.35 * (white - low_ - high_);
    return high_ * kUnitLevel;
  }

 private:
  static constexpr double kUnitLevel = 3.8;  // brings the filtered noise back to an RMS of about 1
  std::mt19937 random_;                      // its sequence is fixed by the language
  double low_ = 0.0;
  double high_ = 0.0;
};

double rootMeanSquare(const std::vector<double>& levels) {
  double power = 0.0;
  for (const double level : levels) power += 0.5 * level * level;
  return std::sqrt(power);
}

std::vector<float> bowString(const Bowing& bowing) {
  const std::vector<double> levels = partialLevels(bowing.hertz);
  const double gain = bowing.level / rootMeanSquare(levels);
  BowNoise noise;
  std::vector<float> samples(static_cast<std::size_t>(bowing.seconds * bowing.sampleRate));
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const double t = static_cast<double>(i) / bowing.sampleRate;
    const double tone = gain * toneAt(levels, phaseAt(bowing.hertz, t));
    const double hiss = kNoise * bowing.level * noise.next();
    samples[i] = static_cast<float>((tone + hiss) * envelopeAt(bowing.seconds, t));
  }
  return samples;
}

void appendRest(std::vector<float>& recording) {
  recording.resize(recording.size() + static_cast<std::size_t>(kRestSeconds * kSampleRate));
}

std::vector<float> fourStrings() {
  std::vector<float> recording;
  appendRest(recording);
  for (const double hertz : endpin::stringFrequencies(kA4InHz)) {
    const auto note = bowString({hertz, kNoteSeconds, kSampleRate, kLevel});
    recording.insert(recording.end(), note.begin(), note.end());
    appendRest(recording);
  }
  return recording;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: endpin-make-four-strings OUTPUT.flac\n", stderr);
    return 2;
  }
  try {
    endpin::writeSound(argv[1], endpin::SoundFormat::Flac16, kSampleRate, fourStrings());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "endpin-make-four-strings: %s\n", error.what());
    return 1;
  }
  return 0;
}
