// The four open strings in equal temperament, from the pitch of A4. Thread: any.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace endpin {

// Strings from the highest: 1 = A3, 2 = D3, 3 = G2, 4 = C2. Arrays hold them in that order.
inline constexpr std::array<const char*, 4> kStringNotes = {"A3", "D3", "G2", "C2"};

// 2^(-12/12), 2^(-19/12), 2^(-26/12) and 2^(-33/12), a few parts in 10^12 above the exact values.
// Kept as they are: band edges are compared with the last bit.
inline constexpr std::array<double, 4> kStringRatios = {0.5000000000016722, 0.3337099635442757,
                                                        0.22272467953669875, 0.14865088937670728};

// Frequencies in hertz for an A4 of `a4InHz` hertz.
[[nodiscard]] inline std::array<double, 4> stringFrequencies(std::int64_t a4InHz) {
  std::array<double, 4> frequencies{};
  for (std::size_t i = 0; i < frequencies.size(); ++i) {
    frequencies[i] = static_cast<double>(a4InHz) * kStringRatios[i];
  }
  return frequencies;
}

}  // namespace endpin
