// Writes one mono sound file, the last step of every sound generator of the build.
#pragma once

#include <sndfile.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace endpin {

enum class SoundFormat {
  Mp3,     // lossy, for the confirmation beep
  Flac16,  // lossless, 16 bit, for recordings that a measurement reads back
};

inline int libraryFormat(SoundFormat format) {
  return format == SoundFormat::Mp3 ? SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III
                                    : SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
}

inline std::runtime_error writeFailure(const std::string& path, const char* reason) {
  return std::runtime_error("cannot write " + path + ": " + reason);
}

// Writes `samples`, full scale ±1, at `sampleRate` hertz. Throws std::runtime_error with one line
// that names the file when it cannot be written; what is left of the file is then of no use.
inline void writeSound(const std::string& path, SoundFormat format, int sampleRate,
                       const std::vector<float>& samples) {
  SF_INFO info{};
  info.samplerate = sampleRate;
  info.channels = 1;
  info.format = libraryFormat(format);
  std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> file(sf_open(path.c_str(), SFM_WRITE, &info),
                                                   &sf_close);
  if (!file) throw writeFailure(path, sf_strerror(nullptr));

  // Clipping instead of wrapping round, should a sample ever leave the scale.
  sf_command(file.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
  // Only the float entry points reach the MP3 encoder undamaged.
  const auto count = static_cast<sf_count_t>(samples.size());
  if (sf_writef_float(file.get(), samples.data(), count) != count) {
    throw writeFailure(path, sf_strerror(file.get()));
  }
  // The encoders hold the end of the sound back until they are closed.
  if (const int error = sf_close(file.release()); error != 0) {
    throw writeFailure(path, sf_error_number(error));
  }
}

}  // namespace endpin
