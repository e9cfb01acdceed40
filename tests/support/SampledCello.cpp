#include "tests/support/SampledCello.h"

#include <cmath>
#include <fstream>
#include <map>
#include <stdexcept>
#include <tuple>

#include "tests/support/ChildProcess.h"

namespace endpin::testing {
namespace {

using namespace std::chrono_literals;

constexpr const char* kSoundfont = "/usr/share/sounds/sf2/TimGM6mb.sf2";

// One note in a MIDI file of one track. A thousand ticks make a quarter note and a quarter note
// lasts one second: the two bytes of seven bits that hold its length are milliseconds.
std::string midiFile(int program, int note, double seconds) {
  using namespace std::string_literals;
  const auto byte = [](long value) { return std::string(1, static_cast<char>(value)); };
  const long milliseconds = std::lround(seconds * 1000.0);
  const std::string track = "\0\xFF\x51\x03\x0F\x42\x40"s +       // tempo
                            "\0\xC0"s + byte(program) +           // program
                            "\0\x90"s + byte(note) + byte(100) +  // note on
                            byte(milliseconds >> 7 | 0x80) + byte(milliseconds & 0x7F) + "\x80"s +
                            byte(note) + byte(64) +  // note off
                            "\x83\x74\xFF\x2F\0"s;   // end, 0.5 s later
  return "MThd\0\0\0\6\0\0\0\1\x03\xE8MTrk\0\0\0"s + byte(static_cast<long>(track.size())) + track;
}

double equalTempered(int midiNote) {
  return 440.0 * std::exp2((midiNote - 69) / 12.0);
}

// Hertz, of what lies between the attack and the release.
double measuredPitch(const Sound& sound, const CelloNote& note, double seconds, double guess) {
  const Sound steady = note.plucked ? slice(sound, 0.05, 0.8) : slice(sound, 0.5, seconds - 0.5);
  return fundamentalOf(steady, guess);
}

// Dry: the chorus and the reverberation would bend the pitch. Kept for the life of the process.
const Sound& rendered(const CelloNote& note, double seconds) {
  static std::map<std::tuple<int, bool, double>, Sound> cache;
  Sound& sound = cache[{note.midiNote, note.plucked, seconds}];
  if (!sound.samples.empty()) return sound;
  const TempDirectory folder;
  const std::string midi = folder.file("note.mid");
  const std::string wav = folder.file("note.wav");
  // Counted from 0: 42 is the bowed cello, 45 the plucked strings.
  std::ofstream(midi, std::ios::binary) << midiFile(note.plucked ? 45 : 42, note.midiNote, seconds);
  const Finished finished = runToEnd(
      {"fluidsynth", "-ni", "-C", "0", "-R", "0", "-r", "48000", "-F", wav, kSoundfont, midi}, 60s);
  if (finished.exitCode != 0) throw std::runtime_error("fluidsynth failed: " + finished.errors);
  return sound = readSoundFile(wav);
}

}  // namespace

std::string whyNoSampledCello() {
  if (!std::filesystem::exists(kSoundfont)) return std::string("there is no ") + kSoundfont;
  const bool works = runToEnd({"fluidsynth", "--version"}, 10s).exitCode == 0;
  return works ? "" : "the program fluidsynth is not installed";
}

Sound sampledCello(const CelloNote& note) {
  const double wanted = raisedByCents(note.frequency, note.cents);
  const double written = equalTempered(note.midiNote);
  // Rendered a little longer than asked for: raising the pitch shortens it.
  const double seconds = std::ceil(note.seconds * wanted / written * 1.02 + 0.1);
  const Sound& original = rendered(note, seconds);
  // Fewer samples, a higher pitch at the same rate.
  const double played = measuredPitch(original, note, seconds, written);
  Sound sound = resampled(original, original.rate * played / wanted);
  sound.rate = original.rate;
  const double error =
      1200.0 * std::log2(measuredPitch(sound, note, note.seconds, wanted) / wanted);
  if (std::abs(error) > (note.plucked ? 0.5 : 0.05)) {
    throw std::runtime_error("the retuned note is off by " + std::to_string(error) + " cents");
  }
  sound = scaledToRms(sound, note.level);
  return mixed(sound, noise(sound.rate, sound.seconds(), note.noiseLevel));
}

}  // namespace endpin::testing
