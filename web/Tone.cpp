// The tone as a module of its own, small enough to be handed to the thread that plays it: the
// synthesizer of the application and nothing else. Called by web/tone-worklet.js, on the audio
// render thread of a context that runs at 44100 Hz. Realtime-safe: yes.
#include <algorithm>
#include <array>

#include "calibration/ToneSynthesizer.h"

#define ENDPIN_EXPORT(name) extern "C" __attribute__((export_name(name)))

namespace endpin {
namespace {

constexpr std::uint32_t kMostFrames = 1024;

ToneSynthesizer synthesizer;
std::array<std::uint32_t, kMostFrames> frames;

}  // namespace

// Sets the frequency (hertz) and the waveform from the next sample on.
ENDPIN_EXPORT("set") void set(float frequency, std::uint32_t waveform) {
  synthesizer.toneFrequency = frequency;
  synthesizer.curTone = waveform;
}

// Makes the next `count` frames, at most 1024, and returns where they are: a frame a 32-bit word,
// the left sample, 16 bits, in the low half and the right one in the high half.
ENDPIN_EXPORT("render") const std::uint32_t* render(std::uint32_t count) {
  AudioOutputBuffer buffer{.mData = frames.data()};
  ToneSynthesizer::renderTone(&synthesizer, std::min(count, kMostFrames), {&buffer, 1});
  return frames.data();
}

}  // namespace endpin
