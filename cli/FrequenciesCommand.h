// `frequencies`: the strings' references, their in-tune bands, and the bins of the spectrum that
// lie inside. A string without a bin can never light the lamp at that calibration. Thread: main.
#pragma once

#include <cstdint>
#include <vector>

#include "cli/CommandLine.h"
#include "cli/Output.h"
#include "tuner/StringRecognition.h"

namespace endpin {

// Returns the exit code; throws ProgramError.
int runFrequencies(const FrequenciesOptions& options, Output& output);

struct SpectrumBin {
  std::uint32_t number;
  float frequency;  // hertz, as the estimate reports it
};

// The bins whose frequency lies inside the band, from the lowest.
[[nodiscard]] std::vector<SpectrumBin> binsInside(const Band& band);

}  // namespace endpin
