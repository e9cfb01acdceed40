// The files that carry a test's sounds: the part of Tone.h that needs libsndfile.
#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <memory>
#include <stdexcept>

#include "tests/support/Tone.h"

namespace endpin::testing {
namespace {

struct Close {
  void operator()(SNDFILE* file) const { sf_close(file); }
};
using File = std::unique_ptr<SNDFILE, Close>;

File openFile(const std::string& path, int mode, SF_INFO& info) {
  File file(sf_open(path.c_str(), mode, &info));
  if (!file) throw std::runtime_error(path + ": " + sf_strerror(nullptr));
  return file;
}

}  // namespace

std::vector<std::int16_t> toS16(const Sound& sound) {
  std::vector<std::int16_t> result(sound.samples.size());
  std::transform(sound.samples.begin(), sound.samples.end(), result.begin(), [](float sample) {
    const double scaled = std::round(static_cast<double>(sample) * 32768.0);
    return static_cast<std::int16_t>(std::clamp(scaled, -32768.0, 32767.0));
  });
  return result;
}

void writeSoundFile(const std::string& path, const Sound& sound, int format, int channels) {
  SF_INFO info{};
  info.samplerate = static_cast<int>(std::lround(sound.rate));
  info.channels = channels;
  info.format = format;
  const File file = openFile(path, SFM_WRITE, info);
  std::vector<float> frames;
  frames.reserve(sound.samples.size() * static_cast<size_t>(channels));
  for (const float sample : sound.samples) {
    frames.insert(frames.end(), static_cast<size_t>(channels), sample);
  }
  // Written as float, second by second: the mp3 encoder garbles 16-bit stereo, and the ogg encoder
  // overflows the stack when it is handed a long sound in one piece.
  const auto total = static_cast<sf_count_t>(sound.samples.size());
  for (sf_count_t done = 0; done < total;) {
    const sf_count_t part = std::min<sf_count_t>(info.samplerate, total - done);
    if (sf_writef_float(file.get(), frames.data() + done * channels, part) != part) {
      throw std::runtime_error(path + ": " + sf_strerror(file.get()));
    }
    done += part;
  }
}

void writeWav(const std::string& path, const Sound& sound, int channels) {
  writeSoundFile(path, sound, SF_FORMAT_WAV | SF_FORMAT_PCM_16, channels);
}

void writeRawS16(const std::string& path, const Sound& sound) {
  std::string bytes;
  for (const std::int16_t sample : toS16(sound)) {
    const auto pattern = static_cast<std::uint16_t>(sample);
    bytes += static_cast<char>(pattern & 0xFF);
    bytes += static_cast<char>(pattern >> 8);
  }
  if (!(std::ofstream(path, std::ios::binary) << bytes).flush()) {
    throw std::runtime_error("cannot write " + path);
  }
}

Sound readSoundFile(const std::string& path) {
  SF_INFO info{};
  const File file = openFile(path, SFM_READ, info);
  std::vector<float> frames(static_cast<size_t>(info.frames * info.channels));
  const sf_count_t got = sf_readf_float(file.get(), frames.data(), info.frames);
  Sound sound{static_cast<double>(info.samplerate), {}};
  for (sf_count_t n = 0; n < got; ++n) {
    sound.samples.push_back(frames[static_cast<size_t>(n * info.channels)]);
  }
  return sound;
}

}  // namespace endpin::testing
