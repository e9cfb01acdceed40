// Which historical or standard pitch an A4 is. Thread: main.
#pragma once

#include <array>
#include <cstdint>

#include "ports/Bundle.h"
#include "ports/Outlets.h"

namespace endpin {

// A row of the table of named pitches; its place in the table is the temperament index.
struct TemperamentRow {
  const char* key;        // of the name in the default text table
  std::int64_t a4InHz;    // the A4 that selects it on the stepper, 0 for none
  bool restored = false;  // also selected when the A4 of an earlier run is restored
};

// Index 0 is no name. The pitch of 430.5 Hz has a name that no whole number of hertz selects.
inline constexpr std::array<TemperamentRow, 15> kTemperaments = {{
    {"", 0},
    {"a392T", 392, true},
    {"a415T", 415, true},
    {"a430T", 430},
    {"a430_5T", 0},
    {"a432T", 432, true},
    {"a435T", 435},
    {"a439T", 439},
    {"a440T", 440, true},
    {"a441T", 441, true},
    {"a442T", 442, true},
    {"a443T", 443, true},
    {"a444T", 444, true},
    {"a445T", 445, true},
    {"a466T", 466, true},
}};

// Index of the pitch that the stepper stands at, compared as it is: a fraction has no name (0).
[[nodiscard]] int temperamentOfStepper(double a4InHz);

// Index of a pitch restored from an earlier run; 0 for those that a restart leaves unnamed.
[[nodiscard]] int temperamentOfRestored(std::int64_t a4InHz);

// Writes the name of `temperamentIndex` into the label; an index past the table does nothing.
void displayTemperamentName(int temperamentIndex, const Bundle& bundle, Label& label);

}  // namespace endpin
