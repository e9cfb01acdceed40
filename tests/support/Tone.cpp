#include "tests/support/Tone.h"

#include <soxr.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <stdexcept>
#include <utility>

namespace endpin::testing {
namespace {

size_t sampleCount(double rate, double seconds) {
  return static_cast<size_t>(std::llround(rate * seconds));
}

void requireEqualRates(const Sound& one, const Sound& other) {
  if (one.rate != other.rate) throw std::logic_error("sounds of different rates do not mix");
}

}  // namespace

Sound harmonics(double rate, double seconds, double fundamental,
                const std::vector<double>& amplitudes) {
  std::vector<double> sum(sampleCount(rate, seconds), 0.0);
  for (size_t k = 0; k < amplitudes.size(); ++k) {
    const double frequency = fundamental * static_cast<double>(k + 1);
    if (frequency >= rate / 2.0) break;
    const double step = 2.0 * std::numbers::pi * frequency / rate;
    for (size_t n = 0; n < sum.size(); ++n) {
      sum[n] += amplitudes[k] * std::sin(step * static_cast<double>(n));
    }
  }
  return {rate, std::vector<float>(sum.begin(), sum.end())};
}

Sound bowedTone(double rate, double seconds, double fundamental, double level) {
  std::vector<double> amplitudes;
  for (int k = 1; k <= 12; ++k) amplitudes.push_back(1.0 / k);
  return scaledToRms(harmonics(rate, seconds, fundamental, amplitudes), level);
}

// Box and Muller by hand: the standard library's normal distribution differs between libraries.
Sound noise(double rate, double seconds, double level, std::uint32_t seed) {
  std::mt19937 engine(seed);
  const auto uniform = [&engine] { return (static_cast<double>(engine()) + 0.5) / 4294967296.0; };
  Sound sound = silence(rate, seconds);
  for (float& sample : sound.samples) {
    const double radius = std::sqrt(-2.0 * std::log(uniform()));
    const double angle = 2.0 * std::numbers::pi * uniform();
    sample = static_cast<float>(level * radius * std::cos(angle));
  }
  return sound;
}

Sound silence(double rate, double seconds) {
  return {rate, std::vector<float>(sampleCount(rate, seconds), 0.0F)};
}

double rms(const Sound& sound) {
  double sum = 0.0;
  for (const float sample : sound.samples) sum += static_cast<double>(sample) * sample;
  return sound.samples.empty() ? 0.0 : std::sqrt(sum / static_cast<double>(sound.samples.size()));
}

Sound scaledToRms(Sound sound, double level) {
  const double now = rms(sound);
  if (now == 0.0) return sound;
  for (float& sample : sound.samples) sample = static_cast<float>(sample * level / now);
  return sound;
}

Sound mixed(Sound sound, const Sound& other) {
  requireEqualRates(sound, other);
  sound.samples.resize(std::max(sound.samples.size(), other.samples.size()), 0.0F);
  for (size_t n = 0; n < other.samples.size(); ++n) sound.samples[n] += other.samples[n];
  return sound;
}

Sound joined(Sound sound, const Sound& next) {
  requireEqualRates(sound, next);
  sound.samples.insert(sound.samples.end(), next.samples.begin(), next.samples.end());
  return sound;
}

std::vector<Sound> partsBetweenSilences(const Sound& sound, double silence) {
  const size_t shortest = sampleCount(sound.rate, silence);
  std::vector<Sound> parts;
  size_t zeros = 0;  // since the last sounding sample
  for (const float sample : sound.samples) {
    if (sample == 0.0F) {
      ++zeros;
      continue;
    }
    if (parts.empty() || zeros >= shortest) {
      parts.push_back({sound.rate, {}});
    } else {
      parts.back().samples.insert(parts.back().samples.end(), zeros, 0.0F);
    }
    parts.back().samples.push_back(sample);
    zeros = 0;
  }
  return parts;
}

Sound longestPart(const Sound& sound) {
  Sound longest{sound.rate, {}};
  for (Sound& part : partsBetweenSilences(sound)) {
    if (part.samples.size() > longest.samples.size()) longest = std::move(part);
  }
  return longest;
}

double soundingSeconds(const Sound& sound) {
  double sum = 0.0;
  for (const Sound& part : partsBetweenSilences(sound)) sum += part.seconds();
  return sum;
}

Sound slice(const Sound& sound, double fromSeconds, double toSeconds) {
  const size_t end = std::min(sampleCount(sound.rate, toSeconds), sound.samples.size());
  const size_t begin = std::min(sampleCount(sound.rate, fromSeconds), end);
  return {sound.rate, {sound.samples.data() + begin, sound.samples.data() + end}};
}

Sound resampled(const Sound& sound, double rate) {
  const double length = static_cast<double>(sound.samples.size()) * rate / sound.rate;
  Sound result{rate, std::vector<float>(static_cast<size_t>(std::ceil(length)))};
  const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_VHQ, 0);
  size_t written = 0;
  const soxr_error_t error = soxr_oneshot(
      sound.rate, rate, 1, sound.samples.data(), sound.samples.size(), nullptr,
      result.samples.data(), result.samples.size(), &written, nullptr, &quality, nullptr);
  if (error != nullptr) throw std::runtime_error(error);
  result.samples.resize(written);
  return result;
}

}  // namespace endpin::testing
