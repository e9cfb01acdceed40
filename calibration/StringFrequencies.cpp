#include "calibration/StringFrequencies.h"

#include <cstddef>

namespace endpin {

std::array<double, 4> stringFrequencies(std::int64_t a4InHz) {
  std::array<double, 4> frequencies{};
  for (std::size_t i = 0; i < frequencies.size(); ++i) {
    frequencies[i] = static_cast<double>(a4InHz) * kStringRatios[i];
  }
  return frequencies;
}

}  // namespace endpin
