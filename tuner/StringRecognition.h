// Which open string, if any, a frequency is in tune with: all or nothing, no nearest string.
// Pure functions and tables; the detection tick and the terminal's frequency table call them.
// Thread: any.
#pragma once

#include <array>

namespace endpin {

// Where a string is expected. The centre of its band is the frequency; the width comes from the
// tolerance base, a separate value that may lag behind. Both in hertz.
struct StringReference {
  double frequency = 0;
  double toleranceBase = 0;
  const char* noteName = "";  // of the string, for people
};

// Strings are numbered from the highest, 1 = A3 to 4 = C2; arrays hold them in that order.
using StringReferences = std::array<StringReference, 4>;

// Half-width of a band = tolerance base / divisor; the low strings' are wider.
inline constexpr std::array<double, 4> kBandDivisors = {1000.0, 1000.0, 850.0, 875.0};

// In-tune band in hertz, both ends included.
struct Band {
  double lower = 0;
  double upper = 0;
  [[nodiscard]] bool contains(double frequency) const {
    return lower <= frequency && frequency <= upper;
  }
};

// Band of string `number` (1 to 4) around `reference`.
[[nodiscard]] Band bandOf(int number, const StringReference& reference);

// Number of the first string whose band holds `frequency` (hertz), 0 for none. Not a number matches
// nothing.
[[nodiscard]] int matchingString(double frequency, const StringReferences& references);

}  // namespace endpin
