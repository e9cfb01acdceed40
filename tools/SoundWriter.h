// Writes one mono sound file, the last step of every sound generator of the build.
#pragma once

#include <string>
#include <vector>

namespace endpin {

enum class SoundFormat {
  Mp3,     // lossy, for the confirmation beep
  Flac16,  // lossless, 16 bit, for recordings that a measurement reads back
};

// Writes `samples`, full scale ±1, at `sampleRate` hertz. Throws std::runtime_error with one line
// that names the file when it cannot be written; what is left of the file is then of no use.
void writeSound(const std::string& path, SoundFormat format, int sampleRate,
                const std::vector<float>& samples);

}  // namespace endpin
