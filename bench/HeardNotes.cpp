#include "bench/HeardNotes.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

#include "tests/support/TempDirectory.h"

namespace endpin::testing {
namespace {

using namespace std::chrono_literals;

Ticks listenTo(const Sound& sound, Ear ear, int a4) {
  const TempDirectory folder;
  const std::string wav = folder.file("note.wav");
  writeWav(wav, sound);
  Command command = {"listen", "--json", "--a4", std::to_string(a4), "--input", wav};
  if (ear == Ear::Fine) command.push_back("--fine");
  const Finished finished =
      runToEnd(endpin(std::move(command)), 60s, {{"HOME", folder.path().string()}});
  if (finished.exitCode != 0) throw std::runtime_error(finished.errors);
  return parseTicks(finished.output);
}

double shareLit(const Ticks& ticks, const std::string& note, double from, double to) {
  int lit = 0;
  int all = 0;
  for (const Tick& tick : ticks) {
    if (tick.time < from || tick.time > to) continue;
    ++all;
    if (tick.green() && tick.note == note) ++lit;
  }
  return all == 0 ? 0.0 : static_cast<double>(lit) / all;
}

}  // namespace

Heard hear(const Note& note, Ear ear) {
  constexpr int kPlaces = 5;
  constexpr double kBlock = 4096 / 7019.5;  // seconds
  const std::string name = kCelloStrings[note.string].note;
  Heard heard;
  for (int place = 0; place < kPlaces; ++place) {
    const double begin = kBlock * place / kPlaces;
    const double end = begin + note.seconds;
    const Ticks ticks = listenTo(joined(silence(note.sound.rate, begin), note.sound), ear, note.a4);
    heard.judged += shareInTune(ticks, note.string, end, note.a4) / kPlaces;
    heard.leastLit = std::min(heard.leastLit, shareLit(ticks, name, begin + 0.7, end));
    heard.mostLit = std::max(heard.mostLit, shareLit(ticks, name, begin + 2.0, end));
    for (const Tick& tick : ticks) {
      if (tick.green()) (tick.note == name ? heard.green : heard.another) = true;
    }
  }
  return heard;
}

CelloNote noteOf(int string, int a4) {
  return {.midiNote = kCelloStrings[string].midiNote,
          .frequency = kCelloStrings[string].frequency * a4 / 440.0};
}

}  // namespace endpin::testing
