// Makes what the fuzzers begin with: a folder a fuzzer.
//
//   endpin-fuzz-seeds FOLDER
#include <sndfile.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "adapters/log/Logs.h"
#include "adapters/sqlite/SqliteStore.h"
#include "tests/support/Tone.h"

namespace {

namespace fs = std::filesystem;
using namespace endpin;

// The last byte tells the fuzzer that the file has a header.
void soundFile(const fs::path& path, int format, int channels = 1, double rate = 22050) {
  testing::writeSoundFile(path, testing::bowedTone(rate, 0.3, 220), format, channels);
  std::ifstream file(path, std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(file), {});
  std::ofstream(path, std::ios::binary) << bytes << '\0';
}

void soundFiles(const fs::path& folder) {
  soundFile(folder / "a.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16);
  soundFile(folder / "b.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 2);
  soundFile(folder / "c.wav", SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM);
  soundFile(folder / "d.rf64", SF_FORMAT_RF64 | SF_FORMAT_PCM_16);
  soundFile(folder / "e.w64", SF_FORMAT_W64 | SF_FORMAT_PCM_16);
  soundFile(folder / "f.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_16);
  soundFile(folder / "g.au", SF_FORMAT_AU | SF_FORMAT_ULAW);
  soundFile(folder / "h.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 2);
  soundFile(folder / "i.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS);
  soundFile(folder / "j.opus", SF_FORMAT_OGG | SF_FORMAT_OPUS, 1, 24000);
  soundFile(folder / "k.mp3", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III);
  std::ofstream(folder / "headerless") << std::string(14000, '\x55') << '\7';
}

void settings(const fs::path& folder) {
  NullLog log;
  for (const int keys : {1, 300}) {
    SqliteStore store(folder / std::to_string(keys), log);
    store.setBool("NewFirstLaunchCello", true);
    store.setDouble("savedSliderValue", 3.5);
    for (int i = 0; i < keys; ++i) store.setString("key" + std::to_string(i), "value");
  }
}

}  // namespace

int main(int argumentCount, char** folder) {
  if (argumentCount != 2) return 2;
  const auto seedsOf = [&](const char* fuzzer) {
    const fs::path seeds = fs::path(folder[1]) / fuzzer;
    fs::create_directories(seeds);
    return seeds;
  };
  soundFiles(seedsOf("sound-file"));
  settings(seedsOf("settings-file"));
  return 0;
}
