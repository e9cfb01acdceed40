#include "tuner/StringRecognition.h"

#include <cstddef>

namespace endpin {

Band bandOf(int number, const StringReference& reference) {
  const double halfWidth =
      reference.toleranceBase / kBandDivisors[static_cast<std::size_t>(number - 1)];
  return {reference.frequency - halfWidth, reference.frequency + halfWidth};
}

int matchingString(double frequency, const StringReferences& references) {
  int number = 1;
  for (const StringReference& reference : references) {
    if (bandOf(number, reference).contains(frequency)) return number;
    ++number;
  }
  return 0;
}

}  // namespace endpin
