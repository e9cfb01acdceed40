// Any bytes as the sound file that plays the microphone. A file may be refused, with one line that
// names it; what is accepted plays on the virtual clock, and ends.
//
// The last byte of an input says whether the file is headerless.
#include <fuzzer/FuzzedDataProvider.h>

#include <fstream>
#include <vector>

#include "adapters/offline/FileMicrophone.h"
#include "adapters/sndfile/SoundFile.h"
#include "audio/CaptureFormat.h"
#include "fuzz/Fuzzing.h"
#include "tests/support/TempDirectory.h"

// Asked by the leak checker: the decoder forgets what it had read of a damaged header.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libvorbis.so\n";
}

namespace endpin::fuzzing {
namespace {

constexpr double kMostSeconds = 5;                 // of listening
constexpr std::uint64_t kMostSamples = 1U << 20U;  // of reading

void readThrough(const std::string& path) {
  SoundFile file(path);
  require(file.rateDoubled() > 0, "time passes in a sound");
  std::vector<std::int16_t> chunk(3000);
  std::uint64_t all = 0;
  while (const std::size_t count = file.read(chunk)) {
    require(count <= chunk.size(), "no more is read than asked for");
    all += count;
    if (all > kMostSamples) return;
  }
  require(file.samplesRead() == all, "samples are counted");
  static_cast<void>(file.truncated());
}

void heard(void* blocks, AudioInputQueue* from, AudioInputBuffer* buffer) {
  require(buffer->mAudioDataByteSize == kBlockBytes, "blocks are whole");
  ++*static_cast<std::size_t*>(blocks);
  from->enqueueBuffer(buffer);
}

// As the command line listens: in tenths of a second while the file lasts.
void listenThrough(const std::string& path) {
  CapturedSound sound{SoundFile(path)};
  VirtualRunLoop loop;
  FileMicrophone microphone(sound, loop);
  std::size_t blocks = 0;
  const auto queue = microphone.newInput(kCaptureFormat, heard, &blocks);
  for (int i = 0; i < 3; ++i) {
    AudioInputBuffer* buffer = nullptr;
    queue->allocateBuffer(kBlockBytes, &buffer);
    queue->enqueueBuffer(buffer);
  }
  queue->enableLevelMetering(1);
  queue->start();
  for (std::uint64_t tick = 1; loop.now() < kMostSeconds && sound.lastsFor(tick); ++tick) {
    loop.runUntil(static_cast<double>(tick) * 0.1);
    LevelMeterState level;
    queue->currentLevelMeter(&level, sizeof level);
    require(level.mAveragePower >= 0 && level.mPeakPower <= 1, "a level lies between 0 and 1");
  }
  require(static_cast<double>(blocks) * kBlockSamples <= loop.now() * kCaptureRate + 1,
          "no block comes early");
  static_cast<void>(sound.truncated());
}

}  // namespace
}  // namespace endpin::fuzzing

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace endpin::fuzzing;
  static const endpin::testing::TempDirectory folder;
  FuzzedDataProvider input(data, size);
  const bool headerless = input.ConsumeIntegralInRange(0, 7) == 7;
  const std::string path = folder.file(headerless ? "sound.s16" : "sound");
  std::ofstream(path, std::ios::binary) << input.ConsumeRemainingBytesAsString();
  for (const auto use : {readThrough, listenThrough}) {
    try {
      use(path);
    } catch (const endpin::SoundFileError& error) {
      const std::string why = error.what();
      require(isOneLine(why) && why.starts_with(path), "a refusal is a line that names the file");
    }
  }
  return 0;
}
