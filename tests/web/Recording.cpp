// endpin-cello FILE.wav: the four strings of the sampled cello, in tune at A4 = 440, from A3 down.
// Each sounds for NOTE seconds, silence of REST seconds before it: a browser's microphone hears it.
#include <cstdio>
#include <exception>

#include "tests/support/SampledCello.h"

namespace {

constexpr double kRest = 1.0;
constexpr double kNote = 2.5;
constexpr int kCannotRun = 77;

void write(const char* path) {
  using namespace endpin::testing;
  Sound all = silence(48000.0, 0.0);
  for (const CelloString& string : kCelloStrings) {
    const Sound note =
        sampledCello({.midiNote = string.midiNote, .frequency = string.frequency, .seconds = 3.0});
    all = joined(joined(all, silence(48000.0, kRest)), slice(note, 0.0, kNote));
  }
  writeWav(path, all);
}

}  // namespace

int main(int count, char** arguments) try {
  if (count != 2) {
    std::fputs("usage: endpin-cello FILE.wav\n", stderr);
    return 2;
  }
  if (const std::string why = endpin::testing::whyNoSampledCello(); !why.empty()) {
    std::fprintf(stderr, "%s\n", why.c_str());
    return kCannotRun;
  }
  write(arguments[1]);
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "endpin-cello: %s\n", error.what());
  return 1;
}
