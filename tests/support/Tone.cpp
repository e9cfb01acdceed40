#include "tests/support/Tone.h"

#include <soxr.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <random>
#include <sndfile.hh>
#include <stdexcept>

namespace endpin::testing {
namespace {

size_t sampleCount(double rate, double seconds) {
  return static_cast<size_t>(std::llround(rate * seconds));
}

void check(const SndfileHandle& file, const std::string& path) {
  if (file.error() != SF_ERR_NO_ERROR) throw std::runtime_error(path + ": " + file.strError());
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

Sound noise(double rate, double seconds, double level, std::uint32_t seed) {
  std::mt19937 engine(seed);
  std::normal_distribution<float> normal(0.0F, static_cast<float>(level));
  Sound sound = silence(rate, seconds);
  if (level > 0.0) std::ranges::generate(sound.samples, [&] { return normal(engine); });
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
  const double factor = level / rms(sound);
  for (float& sample : sound.samples) sample = static_cast<float>(sample * factor);
  return sound;
}

Sound mixed(Sound sound, const Sound& other) {
  sound.samples.resize(std::max(sound.samples.size(), other.samples.size()), 0.0F);
  for (size_t n = 0; n < other.samples.size(); ++n) sound.samples[n] += other.samples[n];
  return sound;
}

Sound joined(Sound sound, const Sound& next) {
  sound.samples.insert(sound.samples.end(), next.samples.begin(), next.samples.end());
  return sound;
}

Sound throughSmallMicrophone(Sound sound, double cornerInHz) {
  const double keep = std::exp(-2 * std::numbers::pi * cornerInHz / sound.rate);
  for (int pass = 0; pass < 2; ++pass) {
    double low = 0;
    for (float& sample : sound.samples) {
      low = keep * low + (1 - keep) * static_cast<double>(sample);
      sample -= static_cast<float>(low);
    }
  }
  return mixed(scaledToRms(std::move(sound), 0.03), noise(sound.rate, sound.seconds(), 0.001));
}

std::vector<Sound> partsBetweenSilences(const Sound& sound, double silence) {
  const std::size_t shortest = sampleCount(sound.rate, silence);
  std::vector<Sound> parts;
  std::size_t silent = shortest;  // samples until here
  for (const float sample : sound.samples) {
    if (sample == 0.0F) {
      ++silent;
      continue;
    }
    if (silent >= shortest) parts.push_back({sound.rate, {}});
    if (silent < shortest) parts.back().samples.insert(parts.back().samples.end(), silent, 0.0F);
    parts.back().samples.push_back(sample);
    silent = 0;
  }
  return parts;
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
  size_t written = 0;
  soxr_oneshot(sound.rate, rate, 1, sound.samples.data(), sound.samples.size(), nullptr,
               result.samples.data(), result.samples.size(), &written, nullptr, nullptr, nullptr);
  result.samples.resize(written);
  return result;
}

// A tone equals itself some whole number of periods later. The more periods, the finer their length
// is known, and each step tells the next where to look. Beyond a quarter of the sound a tear of
// less than a millisecond, where a busy machine left one, would count for too much.
double fundamentalOf(const Sound& sound, double guess) {
  const std::size_t quarter = sound.samples.size() / 4;
  const auto difference = [&](std::size_t lag) {
    double sum = 0.0;
    for (std::size_t n = 0; n < 2 * quarter; ++n) {
      const auto off = static_cast<double>(sound.samples[n] - sound.samples[n + lag]);
      sum += off * off;
    }
    return sum;
  };
  double period = sound.rate / guess;                           // in samples
  if (static_cast<double>(quarter) < 2.0 * period) return 0.0;  // too short to tell
  // An octave lower a tone differs from itself after one period, an octave higher it does not after
  // half of one.
  const double energy = std::inner_product(
      sound.samples.begin(), sound.samples.begin() + static_cast<std::ptrdiff_t>(2 * quarter),
      sound.samples.begin(), 0.0);
  const double once = difference(static_cast<std::size_t>(std::lround(period)));
  const double half = difference(static_cast<std::size_t>(std::lround(period / 2.0)));
  if (once > energy || half < 2.0 * once) return 0.0;
  for (const double atMost : {8.0, 64.0, 1e9}) {
    const double periods = std::min(atMost, std::floor(static_cast<double>(quarter) / period));
    const auto first = static_cast<std::size_t>((periods - 0.2) * period);
    std::vector<double> differences;
    for (std::size_t lag = first; static_cast<double>(lag) < (periods + 0.2) * period; ++lag) {
      differences.push_back(difference(lag));
    }
    const auto least = std::min_element(differences.begin() + 1, differences.end() - 1);
    const double vertex = (least[-1] - least[1]) / (least[-1] - 2.0 * least[0] + least[1]) / 2.0;
    const auto whole =
        static_cast<double>(least - differences.begin()) + static_cast<double>(first);
    period = (whole + vertex) / periods;
  }
  return sound.rate / period;
}

double raisedByCents(double frequency, double cents) {
  return frequency * std::exp2(cents / 1200.0);
}

std::vector<std::int16_t> toS16(const Sound& sound) {
  std::vector<std::int16_t> result;
  for (const float sample : sound.samples) {
    const double scaled = std::round(static_cast<double>(sample) * 32768.0);
    result.push_back(static_cast<std::int16_t>(std::clamp(scaled, -32768.0, 32767.0)));
  }
  return result;
}

// As float, second by second: the mp3 encoder garbles 16-bit stereo, and the ogg encoder overflows
// the stack when it is handed a long sound in one piece.
void writeSoundFile(const std::string& path, const Sound& sound, int format, int channels) {
  const int rate = static_cast<int>(std::lround(sound.rate));
  SndfileHandle file(path, SFM_WRITE, format, channels, rate);
  std::vector<float> frames;
  for (std::size_t n = 0; n < sound.samples.size(); ++n) {
    frames.insert(frames.end(), static_cast<std::size_t>(channels), sound.samples[n]);
    if ((n + 1) % static_cast<std::size_t>(rate) != 0 && n + 1 < sound.samples.size()) continue;
    file.write(frames.data(), static_cast<sf_count_t>(frames.size()));
    frames.clear();
  }
  check(file, path);
}

void writeWav(const std::string& path, const Sound& sound, int channels) {
  writeSoundFile(path, sound, SF_FORMAT_WAV | SF_FORMAT_PCM_16, channels);
}

Sound readSoundFile(const std::string& path) {
  SndfileHandle file(path);
  check(file, path);
  std::vector<float> frame(static_cast<std::size_t>(file.channels()));
  Sound sound{static_cast<double>(file.samplerate()), {}};
  while (file.readf(frame.data(), 1) == 1) sound.samples.push_back(frame[0]);
  return sound;
}

}  // namespace endpin::testing
