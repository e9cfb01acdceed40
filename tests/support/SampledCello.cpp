#include "tests/support/SampledCello.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <tuple>
#include <utility>

#include "tests/support/ChildProcess.h"
#include "tests/support/HarmonicFit.h"
#include "tests/support/TempDirectory.h"

namespace endpin::testing {
namespace {

using namespace std::chrono_literals;

constexpr const char* kSoundfont = "/usr/share/sounds/sf2/TimGM6mb.sf2";
// Programs count from 0 in the file: 42 is the bowed cello, 45 the plucked strings.
constexpr int kBowed = 42;
constexpr int kPlucked = 45;

std::string variableLength(unsigned value) {
  std::string bytes(1, static_cast<char>(value & 0x7F));
  while ((value >>= 7) != 0) bytes.insert(bytes.begin(), static_cast<char>((value & 0x7F) | 0x80));
  return bytes;
}

std::string bigEndian(unsigned value, int size) {
  std::string bytes;
  for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
    bytes += static_cast<char>(value >> shift);
  return bytes;
}

// One note in a MIDI file of one track. A thousand ticks make a quarter note and a quarter note
// lasts one second: deltas are milliseconds.
std::string midiFile(int program, int note, double seconds) {
  const auto byte = [](int value) { return std::string(1, static_cast<char>(value)); };
  const auto milliseconds = static_cast<unsigned>(std::lround(seconds * 1000.0));
  const std::string start = variableLength(0);
  const std::string track =
      start + "\xFF\x51\x03" + bigEndian(1000000, 3) +                     // tempo
      start + byte(0xC0) + byte(program) +                                 // program
      start + byte(0x90) + byte(note) + byte(100) +                        // note on
      variableLength(milliseconds) + byte(0x80) + byte(note) + byte(64) +  // note off
      variableLength(500) + byte(0xFF) + byte(0x2F) + byte(0);             // end of track
  return "MThd" + bigEndian(6, 4) + bigEndian(0, 2) + bigEndian(1, 2) + bigEndian(1000, 2) +
         "MTrk" + bigEndian(static_cast<unsigned>(track.size()), 4) + track;
}

// Dry: the chorus and the reverberation would bend the pitch.
Sound rendered(int program, int note, double seconds) {
  const TempDirectory folder;
  const std::string midi = folder.file("note.mid");
  const std::string wav = folder.file("note.wav");
  std::ofstream(midi, std::ios::binary) << midiFile(program, note, seconds);
  const Finished finished = runToEnd(
      {"fluidsynth", "-ni", "-C", "0", "-R", "0", "-r", "48000", "-F", wav, kSoundfont, midi}, 60s);
  if (finished.exitCode != 0) throw std::runtime_error("fluidsynth failed: " + finished.errors);
  return readSoundFile(wav);
}

// Fewer samples, a higher pitch: what lay at `from` lies at `to` afterwards, at the same rate.
Sound repitched(const Sound& sound, double from, double to) {
  Sound result = resampled(sound, sound.rate * from / to);
  result.rate = sound.rate;
  return result;
}

double equalTempered(int midiNote) {
  return 440.0 * std::exp2((midiNote - 69) / 12.0);
}

Sound steadyPart(const Sound& sound, const CelloNote& note) {
  return note.plucked ? slice(sound, 0.05, 0.8) : slice(sound, 0.5, note.seconds - 0.5);
}

struct Rendered {
  Sound sound;
  double fundamental;
};

const Rendered& renderedOnce(const CelloNote& note, double seconds) {
  static std::map<std::tuple<int, bool, double>, Rendered> cache;
  const auto key = std::tuple(note.midiNote, note.plucked, seconds);
  const auto found = cache.find(key);
  if (found != cache.end()) return found->second;
  CelloNote asRendered = note;
  asRendered.seconds = seconds;
  Sound sound = rendered(note.plucked ? kPlucked : kBowed, note.midiNote, seconds);
  const double fundamental =
      fundamentalOf(steadyPart(sound, asRendered), equalTempered(note.midiNote));
  return cache.emplace(key, Rendered{std::move(sound), fundamental}).first->second;
}

}  // namespace

std::string whyNoSampledCello() {
  if (!std::filesystem::exists(kSoundfont)) return std::string("there is no ") + kSoundfont;
  const bool works = runToEnd({"fluidsynth", "--version"}, 10s).exitCode == 0;
  return works ? "" : "the program fluidsynth is not installed";
}

double measuredPitch(const Sound& sound, const CelloNote& note) {
  return fundamentalOf(steadyPart(sound, note), raisedByCents(note.frequency, note.cents));
}

Sound sampledCello(const CelloNote& note) {
  const double wanted = raisedByCents(note.frequency, note.cents);
  // Rendered a little longer than asked for: raising the pitch shortens it.
  const double ratio = wanted / equalTempered(note.midiNote);
  const Rendered& original = renderedOnce(note, std::ceil(note.seconds * ratio * 1.02 + 0.1));
  Sound sound = scaledToRms(repitched(original.sound, original.fundamental, wanted), note.level);
  const double error = centsBetween(measuredPitch(sound, note), wanted);
  if (std::abs(error) > (note.plucked ? 0.5 : 0.05)) {
    throw std::runtime_error("the retuned note is off by " + std::to_string(error) + " cents");
  }
  if (note.noiseLevel > 0.0)
    sound = mixed(sound, noise(sound.rate, sound.seconds(), note.noiseLevel));
  return sound;
}

}  // namespace endpin::testing
