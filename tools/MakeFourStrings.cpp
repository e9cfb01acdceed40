// Plays the four open strings one after the other, A3 D3 G2 C2, in tune at A4 = 440 Hz:
// endpin-make-four-strings OUTPUT.flac

#include <cstdio>
#include <exception>
#include <vector>

#include "calibration/StringFrequencies.h"
#include "tools/BowedString.h"
#include "tools/SoundWriter.h"

namespace {

constexpr int kSampleRate = 48000;
constexpr int kA4InHz = 440;
constexpr double kNoteSeconds = 3.0;
constexpr double kRestSeconds = 0.7;  // longer than one analysis block, so that silence is heard
constexpr double kLevel = 0.09;       // of full scale: a cello a metre or two from the microphone

void appendRest(std::vector<float>& recording) {
  recording.resize(recording.size() + static_cast<std::size_t>(kRestSeconds * kSampleRate));
}

std::vector<float> fourStrings() {
  std::vector<float> recording;
  appendRest(recording);
  for (const double hertz : endpin::stringFrequencies(kA4InHz)) {
    const auto note = endpin::bowString({hertz, kNoteSeconds, kSampleRate, kLevel});
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
