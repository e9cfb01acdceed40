// What the tuner can and cannot hear: a sampled cello in and out of tune, in noise, plucked,
// through a small microphone and at every calibration, as Markdown tables. The default estimator
// and the fine one hear the same recordings.
#include <fmt/format.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>

#include "bench/HeardNotes.h"

namespace endpin::testing {
namespace {

constexpr std::array<Ear, 2> kEars = {Ear::Default, Ear::Fine};

void print(const std::string& text) {
  std::fputs(text.c_str(), stdout);
  std::fflush(stdout);
}

void printHead(const std::string& first) {
  print(fmt::format("\n| {} |", first));
  for (const char* ear : {"", "fine "}) {
    for (const CelloString& string : kCelloStrings) print(fmt::format(" {}{} |", ear, string.note));
  }
  print("\n|---|---|---|---|---|---|---|---|---|\n");
}

std::string judged(const Heard& heard) {
  return fmt::format("{:.0f} %{}{}", 100 * heard.judged,
                     heard.green && heard.judged == 0 ? ", green at an end" : "",
                     heard.another ? ", **another string**" : "");
}
std::string leastLit(const Heard& heard) {
  return fmt::format("{:.0f} %{}", 100 * heard.leastLit,
                     heard.another ? ", **another string**" : "");
}
std::string mostLit(const Heard& heard) {
  return fmt::format("{:.0f} %{}", 100 * heard.mostLit,
                     heard.another ? ", **another string**" : "");
}

// One row: the four strings under the same conditions, as each ear heard them.
void printRow(const std::string& name, const std::function<Note(int string)>& noteFor,
              std::string (*cell)(const Heard&) = judged) {
  print(fmt::format("| {} |", name));
  const std::array<Note, 4> notes = {noteFor(0), noteFor(1), noteFor(2), noteFor(3)};
  for (const Ear ear : kEars) {
    for (const Note& note : notes) print(fmt::format(" {} |", cell(hear(note, ear))));
  }
  print("\n");
}

void printCentsOff() {
  printHead("cents off");
  for (const int cents : {-50, -20, -10, -7, -5, -4, -3, -2, -1, 0, 1, 2, 3, 4, 5, 7, 10, 20, 50}) {
    printRow(cents == 0 ? "0" : fmt::format("{:+}", cents), [&](int string) {
      CelloNote note = noteOf(string);
      note.cents = cents;
      return Note{.string = string, .sound = sampledCello(note)};
    });
  }
}

void printNoise() {
  printHead("tone above noise");
  for (const int decibels : {40, 20, 10, 6, 3, 0, -6, -9, -12, -18}) {
    printRow(fmt::format("{} dB", decibels), [&](int string) {
      CelloNote note = noteOf(string);
      note.noiseLevel = note.level * std::pow(10, -decibels / 20.0);
      return Note{.string = string, .sound = sampledCello(note)};
    });
  }
}

void printMicrophones() {
  printHead("in tune");
  printRow("bowed", [](int string) {
    return Note{.string = string, .sound = sampledCello(noteOf(string))};
  });
  for (const int corner : {50, 100, 150, 200, 300}) {
    printRow(fmt::format("bowed, no bass below {} Hz", corner), [&](int string) {
      const Sound sound = sampledCello(noteOf(string));
      return Note{.string = string, .sound = throughSmallMicrophone(sound, corner)};
    });
  }
  printRow("bowed with a neighbour", [](int string) {
    const int neighbour = string == 3 ? 2 : string + 1;
    return Note{.string = string,
                .sound = mixed(sampledCello(noteOf(string)), sampledCello(noteOf(neighbour)))};
  });
  printRow("plucked, from 1.2 to 2.5 s", [](int string) {
    CelloNote note = noteOf(string);
    note.plucked = true;
    return Note{.string = string, .sound = slice(sampledCello(note), 0, 3), .seconds = 2.5};
  });
}

// What remains of all calibrations of one string, heard by one ear.
struct Calibrations {
  double sum = 0;
  double least = 1;
  int leastAt = 0;
  int deaf = 0;  // heard less than nine times in ten

  void add(int a4, double share) {
    sum += share;
    if (share < 0.9) ++deaf;
    if (share >= least) return;
    least = share;
    leastAt = a4;
  }
  [[nodiscard]] std::string leastText() const {
    return leastAt == 0 ? "100 %" : fmt::format("{:.0f} % at {}", 100 * least, leastAt);
  }
};

void printCalibrations(const std::string& head, Sound (*throughMicrophone)(const Sound&)) {
  constexpr int kFirst = 392;
  constexpr int kLast = 466;
  std::array<Calibrations, 8> columns;  // the default ear's strings, then the fine one's
  for (int a4 = kFirst; a4 <= kLast; ++a4) {
    for (std::size_t column = 0; column < 4; ++column) {
      const int string = static_cast<int>(column);
      const Note note = {
          .string = string, .sound = throughMicrophone(sampledCello(noteOf(string, a4))), .a4 = a4};
      columns[column].add(a4, hear(note, Ear::Default).judged);
      columns[column + 4].add(a4, hear(note, Ear::Fine).judged);
    }
  }
  const auto row = [&](const char* name, const auto& cell) {
    print(fmt::format("| {} |", name));
    for (const Calibrations& column : columns) print(fmt::format(" {} |", cell(column)));
    print("\n");
  };
  printHead(head);
  row("mean", [](const Calibrations& all) {
    return fmt::format("{:.0f} %", 100 * all.sum / (kLast - kFirst + 1));
  });
  row("least", [](const Calibrations& all) { return all.leastText(); });
  row("calibrations below 90 %", [](const Calibrations& all) { return all.deaf; });
}

// The lamp as a player sees it, at calibrations that people use.
void printLamp(const std::string& head, double cents, std::string (*cell)(const Heard&)) {
  printHead(head);
  for (const int a4 : {392, 415, 440, 443, 466}) {
    for (const bool bass : {true, false}) {
      const auto noteFor = [&](int string) {
        CelloNote cello = noteOf(string, a4);
        cello.cents = cents;
        const Sound sound = sampledCello(cello);
        return Note{
            .string = string, .sound = bass ? sound : throughSmallMicrophone(sound, 180), .a4 = a4};
      };
      printRow(fmt::format("{}{}", a4, bass ? "" : ", no bass below 180 Hz"), noteFor, cell);
    }
  }
}

void printAll() {
  printCentsOff();
  printNoise();
  printMicrophones();
  printCalibrations("392 to 466 Hz", [](const Sound& sound) { return sound; });
  printCalibrations("392 to 466 Hz, no bass below 200 Hz",
                    [](const Sound& sound) { return throughSmallMicrophone(sound, 200); });
  printLamp("lamp, in tune, from 0.7 s on", 0, leastLit);
  printLamp("lamp, 5 cents flat, from 2 s on", -5, mostLit);
  printLamp("lamp, 5 cents sharp, from 2 s on", 5, mostLit);
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
