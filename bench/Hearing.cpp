// What the tuner can and cannot hear: a sampled cello in and out of tune, in noise, plucked, and
// through a small microphone, as Markdown tables. Each figure is the share of the ticks of a held
// note, begun at several places of the half-second block, that judged its string in tune.
#include <cmath>
#include <cstdio>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include "tests/e2e/Listening.h"
#include "tests/support/TempDirectory.h"

namespace endpin::testing {
namespace {

using namespace std::chrono_literals;

struct Heard {
  double share = 0;      // of the steady ticks, in tune at the own string
  bool green = false;    // ever, at the own string
  bool another = false;  // ever, at another string
};

Ticks listenTo(const Sound& sound) {
  const TempDirectory folder;
  writeWav(folder.file("note.wav"), sound);
  const Finished finished =
      runToEnd(endpin({"listen", "--json", "--a4", "440", "--input", folder.file("note.wav")}), 60s,
               {{"HOME", folder.path().string()}});
  if (finished.exitCode != 0) throw std::runtime_error(finished.errors);
  return parseTicks(finished.output);
}

// The mean over five places in the block where the note may begin.
Heard hear(int string, const Sound& note, double noteSeconds) {
  constexpr int kPlaces = 5;
  constexpr double kBlock = 4096 / 7019.5;  // seconds
  Heard heard;
  for (int place = 0; place < kPlaces; ++place) {
    const double before = kBlock * place / kPlaces;
    const Ticks ticks = listenTo(joined(silence(note.rate, before), note));
    heard.share += shareInTune(ticks, string, before + noteSeconds) / kPlaces;
    for (const Tick& tick : ticks) {
      if (!tick.green()) continue;
      const bool own = tick.note == kCelloStrings[string].note;
      (own ? heard.green : heard.another) = true;
    }
  }
  return heard;
}

CelloNote noteOf(int string) {
  return {.midiNote = kCelloStrings[string].midiNote, .frequency = kCelloStrings[string].frequency};
}

void printHead(const char* first) {
  std::printf("\n| %s |", first);
  for (const CelloString& string : kCelloStrings) std::printf(" %s |", string.note);
  std::printf("\n|---|---|---|---|---|\n");
}

// One row: the four strings under the same conditions.
void printRow(const char* name, const std::function<Heard(int string)>& measure) {
  std::printf("| %s |", name);
  for (int string = 0; string < 4; ++string) {
    const Heard heard = measure(string);
    std::printf(" %.0f %%%s%s |", 100 * heard.share,
                heard.green && heard.share == 0 ? ", green at an end" : "",
                heard.another ? ", **another string**" : "");
    std::fflush(stdout);
  }
  std::printf("\n");
}

void printAll() {
  printHead("cents off");
  for (const int cents : {-50, -20, -10, -7, -5, -4, -3, -2, -1, 0, 1, 2, 3, 4, 5, 7, 10, 20, 50}) {
    printRow((std::string(cents > 0 ? "+" : "") + std::to_string(cents)).c_str(), [&](int string) {
      CelloNote note = noteOf(string);
      note.cents = cents;
      return hear(string, sampledCello(note), note.seconds);
    });
  }
  printHead("tone above noise");
  for (const int decibels : {40, 20, 10, 6, 3, 0, -6}) {
    printRow((std::to_string(decibels) + " dB").c_str(), [&](int string) {
      CelloNote note = noteOf(string);
      note.noiseLevel = note.level * std::pow(10, -decibels / 20.0);
      return hear(string, sampledCello(note), note.seconds);
    });
  }
  printHead("in tune");
  printRow("bowed", [](int string) {
    const CelloNote note = noteOf(string);
    return hear(string, sampledCello(note), note.seconds);
  });
  for (const int corner : {50, 100, 150, 200, 300}) {
    printRow(("bowed, no bass below " + std::to_string(corner) + " Hz").c_str(), [&](int string) {
      const CelloNote note = noteOf(string);
      return hear(string, throughSmallMicrophone(sampledCello(note), corner), note.seconds);
    });
  }
  printRow("plucked, from 1.2 to 2.5 s", [](int string) {
    CelloNote note = noteOf(string);
    note.plucked = true;
    return hear(string, slice(sampledCello(note), 0, 3), 2.5);
  });
}

}  // namespace
}  // namespace endpin::testing

int main() {
  try {
    if (const std::string why = endpin::testing::whyNoSampledCello(); !why.empty()) {
      throw std::runtime_error(why);
    }
    endpin::testing::printAll();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
