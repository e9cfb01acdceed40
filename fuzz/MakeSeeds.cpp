// Makes what the fuzzers begin with, from what the tests use: a folder a fuzzer.
//
//   endpin-fuzz-seeds FOLDER RESOURCES
#include <sndfile.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "adapters/log/Logs.h"
#include "adapters/sqlite/SqliteStore.h"
#include "tests/support/Tone.h"

namespace {

namespace fs = std::filesystem;
using namespace endpin;

std::string contentOf(const fs::path& path) {
  std::ostringstream content;
  content << std::ifstream(path, std::ios::binary).rdbuf();
  return content.str();
}

class Seeds {
 public:
  Seeds(const fs::path& folder, const char* fuzzer) : folder_(folder / fuzzer) {
    fs::create_directories(folder_);
  }

  void add(const std::string& name, const std::string& bytes) const {
    std::ofstream(folder_ / name, std::ios::binary) << bytes;
  }
  // Puts `front` before the bytes of a file that was made under that name.
  void prefix(const std::string& name, const std::string& front) const {
    add(name, front + contentOf(folder_ / name));
  }
  [[nodiscard]] std::string path(const std::string& name) const { return folder_ / name; }

 private:
  fs::path folder_;
};

// A number as the fuzzers read it: its bytes as this machine keeps them.
template <class Number>
std::string bytesOf(Number number) {
  return {reinterpret_cast<const char*>(&number), sizeof number};
}
std::string text(const std::string& value) {
  return static_cast<char>(value.size()) + value;
}

// A level that opens the gate, then each string: the actions of the pitch fuzzer by their place.
void pitch(const fs::path& folder) {
  const Seeds seeds(folder, "pitch");
  for (const std::int64_t a4 : {0, 392, 440, 466}) {
    std::string actions = bytesOf(a4) + std::string("\5\47", 2);
    for (const char string : {'\0', '\1', '\2', '\3'}) actions += std::string("\3") + string;
    actions += std::string("\2", 1) + bytesOf(std::uint16_t{40000}) + "\6\3\3\1\11\17";
    actions += "\7" + bytesOf(std::uint16_t{442 * 16}) + std::string("\3\0\10", 3);
    actions += bytesOf(std::int16_t{5000}) + "\1\5\x7f\x40\x10\x80\xc0";
    seeds.add("strings-" + std::to_string(a4), actions);
  }
  const auto block = testing::toS16(testing::bowedTone(7019.5, 0.1, 220));
  std::string samples;
  for (const std::int16_t sample : block) samples += bytesOf(sample);
  seeds.add("samples", bytesOf(std::int64_t{440}) + "\4" + bytesOf(0.1F) + std::string("\0", 1) +
                           bytesOf(static_cast<std::uint16_t>(samples.size() - 1)) + samples);
}

void soundFiles(const fs::path& folder) {
  const Seeds seeds(folder, "sound-file");
  const testing::Sound tone = testing::bowedTone(22050, 0.3, 220);
  const struct {
    const char* name;
    int format;
    int channels;
  } rows[] = {{"a.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1},
              {"b.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 2},
              {"c.wav", SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM, 1},
              {"d.rf64", SF_FORMAT_RF64 | SF_FORMAT_PCM_16, 1},
              {"e.w64", SF_FORMAT_W64 | SF_FORMAT_PCM_16, 1},
              {"f.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_16, 1},
              {"g.au", SF_FORMAT_AU | SF_FORMAT_ULAW, 1},
              {"h.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 2},
              {"i.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS, 1},
              {"j.opus", SF_FORMAT_OGG | SF_FORMAT_OPUS, 1},
              {"k.mp3", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, 1}};
  for (const auto& row : rows) {
    testing::Sound sound = tone;
    if (std::string_view(row.name) == "j.opus") sound = testing::bowedTone(24000, 0.3, 220);
    testing::writeSoundFile(seeds.path(row.name), sound, row.format, row.channels);
    seeds.prefix(row.name, std::string(1, '\0'));
  }
  testing::writeRawS16(seeds.path("raw"), testing::bowedTone(7019.5, 1, 220));
  seeds.prefix("raw", "\7");
  seeds.add("letter", std::string("\0Dear Sir, this is no sound at all.", 35));
}

void settings(const fs::path& folder) {
  const Seeds files(folder, "settings-file");
  NullLog log;
  for (const int keys : {0, 5, 300}) {
    const std::string name = "keys-" + std::to_string(keys);
    SqliteStore store(files.path(name), log);
    store.setBool("NewFirstLaunchCello", true);
    store.setInteger("a4InHzSavedValue", 442);
    store.setDouble("savedSliderValue", 3.5);
    store.setString("kRatingPromptCurrentVersion", "1.0");
    for (int i = 0; i < keys; ++i) store.setString("key" + std::to_string(i), "value");
  }
  files.add("letter", "hello");

  const Seeds values(folder, "setting-values");
  const std::string launched("\0\0\1", 3);
  values.add("integers", launched + "\1\1" + bytesOf(std::int64_t{442}) + "\3\1" +
                             bytesOf(std::int64_t{7}) + "\5\2" + bytesOf(3.0));
  values.add("texts", launched + "\1\3" + text(" +415 Hz") + "\5\3" + text("1e3") + "\13\3" +
                          text("1699999999.5") + "\12\3" + text("1.0"));
}

void texts(const fs::path& folder, const fs::path& resources) {
  const Seeds seeds(folder, "text-tables");
  for (const auto& file : fs::recursive_directory_iterator(resources / "texts")) {
    if (file.path().extension() != ".json") continue;
    const std::string name =
        file.path().parent_path().filename().string() + '-' + file.path().stem().string();
    seeds.add(name, text("de_AT.UTF-8") + contentOf(file.path()));
  }
  seeds.add("cut", text("zh_TW") + R"({"hello": )");
  seeds.add("number", text("C") + R"({"hello": 5, "CalibrationTitle": "%@ %%"})");
}

// A line each, its words apart by blanks; the fuzzers part them by zero bytes.
void arguments(const Seeds& seeds, std::initializer_list<const char*> lines) {
  int number = 0;
  for (std::string line : lines) {
    std::replace(line.begin(), line.end(), ' ', '\0');
    seeds.add(std::to_string(++number), line);
  }
}

}  // namespace

int main(int argumentCount, char** paths) {
  if (argumentCount != 3) return 2;
  const fs::path folder = paths[1];
  pitch(folder);
  soundFiles(folder);
  settings(folder);
  texts(folder, paths[2]);
  arguments(Seeds(folder, "cli-arguments"),
            {"--help", "--version", "listen --input a.wav --realtime --a4 440 --json --verbose",
             "listen --input-device name --or-recording b.flac", "listen --list-inputs",
             "frequencies --a4 415 --json", "listen --a4 440.5", "listen --bogus", "sing",
             "tone --string a\nb --seconds 1 --output a",
             "tone --string A3 --a4 442 --waveform sine --seconds 1.5 --output a.wav",
             "tone --string=C2 --waveform=triangle --seconds=1e2 --output=b"});
  arguments(Seeds(folder, "desktop-arguments"),
            {"--help", "--version", "--list-devices", "--device phone:667 --input a.wav",
             "--input-device name --store s.db --language pt-BR --panel fork",
             "--screenshot a.png --after 2.5 --verbose", "--after nan --screenshot=b",
             "--language a\nb --verbose", "--panel=about --device=tablet:1366", "--language de",
             "--bogus", "word"});
  return 0;
}
